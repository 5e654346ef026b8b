#pragma once

// Counted array of floats (audio levels, filter coefficients, mixing
// matrices): a CArray<float> that can be made at a given length, zeroed,
// and read as one contiguous block.
#include <vek/core/CArray.h>

namespace Quorvex::Vek {

class CFloatArray : public CArray<float> {
public:
    enum : uint32_t { Type = Four("flts") };

    CFloatArray() : CArray<float>(Type) {}

    // `length` zeros; null when the length is negative, above the storage
    // limit or cannot be allocated.
    static CFloatArray* Create(int32_t length = 0)
    {
        auto* array = new (fallible) CFloatArray();
        if (!array)
            return nullptr;
        if (array->Resize(length) < 0) {
            array->Release();
            return nullptr;
        }
        return array;
    }

    // Changes the length, filling new elements with `fill`.
    int Resize(int32_t length, float fill = 0.0f)
    {
        if (length < 0)
            return RESULT_ARGUMENT_OUT_OF_RANGE;
        if (!m_items.Reserve(length))
            return RESULT_OUT_OF_MEMORY;
        while (m_items.Count() > length)
            m_items.Take(m_items.Count() - 1);
        while (m_items.Count() < length)
            m_items.Insert(m_items.Count(), float(fill));
        return RESULT_OK;
    }

    // The elements as one block (null while empty); valid until the next
    // change of the array's length.
    float* GetData() { return m_items.Data(); }
    const float* GetData() const { return m_items.Data(); }

protected:
    ~CFloatArray() override = default;
};

} // namespace Quorvex::Vek
