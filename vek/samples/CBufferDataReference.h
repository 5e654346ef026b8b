#pragma once

// Bytes in a CByteArray, of which the first `available length` are valid:
// a decoder can fill part of a larger array and say how much it used. The
// reference shares the array (one reference held).
#include <vek/core/CByteArray.h>
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CBufferDataReference : public CMediaSampleDataReference {
public:
    enum : uint32_t { Type = Four("bdr ") };

    // The whole array is valid. A null array holds nothing.
    explicit CBufferDataReference(CByteArray* buffer);
    // The first `length` bytes are valid; a length outside 0..array length
    // is cut into that range (with a log line).
    CBufferDataReference(CByteArray* buffer, int32_t length);

    // Borrowed.
    CByteArray* GetBuffer() const { return m_buffer; }
    // Shares `buffer`, whose whole length becomes valid.
    void SetBuffer(CByteArray* buffer);
    int32_t GetAvailableLength() const { return m_available; }
    // The first byte, or null without an array (or without its memory).
    unsigned char* GetData() const;

    // The array's bytes and the valid length; -19002 when the array cannot
    // make its memory.
    int Lock(unsigned char*& data, int32_t& length) override;
    // -19003 outside 0..array length.
    int SetLength(int32_t length) override;

protected:
    ~CBufferDataReference() override;

private:
    int32_t Capacity() const { return m_buffer ? m_buffer->GetLength() : 0; }

    RObject<CByteArray> m_buffer;
    int32_t m_available = 0;
};

} // namespace Quorvex::Vek
