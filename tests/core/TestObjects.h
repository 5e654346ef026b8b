#pragma once

// Small CObject subclasses used by the core tests.
#include <vek/core/CObject.h>
#include <vek/core/CPoolBase.h>

#include <atomic>

namespace VekTest {

using Quorvex::Vek::CObject;
using Quorvex::Vek::Four;

// Counts its own destructions so a test can see exactly when it dies.
class Probe : public CObject {
public:
    static constexpr uint32_t Type = Four("prob");
    explicit Probe(std::atomic<int>* destroyed = nullptr, uint32_t type = Type) : CObject(type), m_destroyed(destroyed)
    {
    }

protected:
    ~Probe() override
    {
        if (m_destroyed)
            ++*m_destroyed;
    }

private:
    std::atomic<int>* m_destroyed;
};

class DerivedProbe : public Probe {
public:
    static constexpr uint32_t Type = Four("drvd");
    DerivedProbe() : Probe(nullptr, Type) {}
};

// A pooled object that carries a reusable buffer and counts constructions,
// clean-ups and destructions across all instances.
class PooledBuffer : public Quorvex::Vek::CPoolObject {
public:
    static constexpr uint32_t Type = Four("pbuf");
    static std::atomic<int> constructed;
    static std::atomic<int> cleaned;
    static std::atomic<int> destroyed;

    PooledBuffer() : CPoolObject(Type) { ++constructed; }

    unsigned char* Buffer() { return m_buffer; }
    int used = 0;

protected:
    ~PooledBuffer() override { ++destroyed; }
    void ReclaimCleanUp() override
    {
        used = 0;
        ++cleaned;
    }

private:
    unsigned char m_buffer[256] = {};
};

} // namespace VekTest
