#pragma once

// One ancillary data packet (SMPTE 291: data identifier, secondary data
// identifier, the line it came on and up to 255 user data bytes, the low eight bits of its words) that
// arrived with a frame. Ordered: delivered once, in arrival order.
// Payload: line (16-bit), DID (8-bit), SDID (8-bit), then the data bytes.
#include <vek/samples/CMetadataElement.h>

namespace Quorvex::Vek {

class VEK_API CAncillaryMetadataElement : public CMetadataElement {
public:
    enum : uint32_t { Type = Four("vanc") };
    enum : int32_t { MaxDataLength = 255, HeaderLength = 4 };

    // A new element (new reference); null for a negative length or one
    // above MaxDataLength, or without memory.
    static CAncillaryMetadataElement* Create(uint16_t line, uint8_t did, uint8_t sdid, const unsigned char* data,
                                             int32_t length);

    uint16_t GetLine() const { return m_line; }
    uint8_t GetDid() const { return m_did; }
    uint8_t GetSdid() const { return m_sdid; }
    // The user data bytes (borrowed; null when there are none).
    CByteArray* GetData() const { return GetPayload(); }

    bool IsOrdered() const override { return true; }
    int32_t GetPayloadLength() const override;
    int WritePayload(CBinaryWriter& writer) const override;
    // -19017 for a payload shorter than the header or with more than
    // MaxDataLength data bytes.
    static int Read(CBinaryReader& reader, int32_t length, CMetadataElement*& out);

protected:
    CAncillaryMetadataElement(uint16_t line, uint8_t did, uint8_t sdid, CByteArray* data);
    ~CAncillaryMetadataElement() override;

private:
    uint16_t m_line;
    uint8_t m_did;
    uint8_t m_sdid;
};

} // namespace Quorvex::Vek
