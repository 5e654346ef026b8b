#pragma once

// One contiguous block of memory that the reference owns, made with a fixed
// capacity; the valid length can shrink and grow back within it.
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CLinearDataReference : public CMediaSampleDataReference {
public:
    enum : uint32_t { Type = Four("ldr ") };

    // A new block of `length` zeroed bytes, all valid (new reference); null
    // for a negative length or without memory.
    static CLinearDataReference* Create(int32_t length);

    int32_t GetCapacity() const { return m_capacity; }
    int32_t GetLength() const { return m_length; }
    unsigned char* GetData() const { return m_data; }

    int Lock(unsigned char*& data, int32_t& length) override;
    // -19003 outside 0..capacity.
    int SetLength(int32_t length) override;

protected:
    CLinearDataReference(unsigned char* data, int32_t length);
    ~CLinearDataReference() override;

private:
    unsigned char* m_data;
    int32_t m_capacity;
    int32_t m_length;
};

} // namespace Quorvex::Vek
