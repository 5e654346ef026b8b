#pragma once

// A picture in memory: the bytes of one CByteArray described by the video
// properties it was made for (size and pixel format). Both are shared.
#include <vek/core/CByteArray.h>
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CMemoryDataReference : public CMediaSampleDataReference {
public:
    enum : uint32_t { Type = Four("mdr ") };

    // Either may be null: without an array the reference holds no bytes.
    CMemoryDataReference(CVideoProperties* properties, CByteArray* buffer);

    // Both borrowed.
    CVideoProperties* GetProperties() const { return m_properties; }
    CByteArray* GetBuffer() const { return m_buffer; }

    // The array's bytes; -19002 when the array cannot make its memory.
    int Lock(unsigned char*& data, int32_t& length) override;

protected:
    ~CMemoryDataReference() override;

private:
    RObject<CVideoProperties> m_properties;
    RObject<CByteArray> m_buffer;
};

} // namespace Quorvex::Vek
