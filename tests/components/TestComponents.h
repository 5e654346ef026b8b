#pragma once

// Small counted objects shared by the component tests.
#include <vek/core/CObject.h>

#include <atomic>

namespace VekTest {

// An item to queue or create: carries a number and counts its destructions.
class Token : public Quorvex::Vek::CObject {
public:
    static constexpr uint32_t Type = Quorvex::Vek::Four("tokn");
    explicit Token(int number = 0, std::atomic<int>* destroyed = nullptr)
        : CObject(Type), number(number), m_destroyed(destroyed)
    {
    }

    const int number;

protected:
    ~Token() override
    {
        if (m_destroyed)
            ++*m_destroyed;
    }

private:
    std::atomic<int>* m_destroyed;
};

} // namespace VekTest
