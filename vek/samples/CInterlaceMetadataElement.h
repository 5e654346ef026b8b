#pragma once

// How the frame's fields are ordered (frame-bound): one of the
// CVideoProperties field orders. Payload: one byte.
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CMetadataElement.h>

namespace Quorvex::Vek {

class VEK_API CInterlaceMetadataElement : public CMetadataElement {
public:
    enum : uint32_t { Type = Four("intl") };

    // A new element (new reference); null for a field order outside
    // FieldOrderUnknown..FieldOrderBottomFirst or without memory.
    static CInterlaceMetadataElement* Create(uint32_t fieldOrder);

    uint32_t GetFieldOrder() const { return m_fieldOrder; }

    int32_t GetPayloadLength() const override { return 1; }
    int WritePayload(CBinaryWriter& writer) const override;
    // -19017 for a payload of another length or an unknown field order.
    static int Read(CBinaryReader& reader, int32_t length, CMetadataElement*& out);

protected:
    explicit CInterlaceMetadataElement(uint32_t fieldOrder);
    ~CInterlaceMetadataElement() override;

private:
    uint32_t m_fieldOrder;
};

} // namespace Quorvex::Vek
