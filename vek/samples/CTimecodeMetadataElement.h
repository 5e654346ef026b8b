#pragma once

// The timecode of a frame (frame-bound). Payload, 25 bytes in the order of
// the surrounding layout: total frames (32-bit), time scale (64-bit), frame
// duration (64-bit), modulus (32-bit), drop-frame flag (8-bit, 0 or 1).
#include <vek/media/CTimeCode.h>
#include <vek/samples/CMetadataElement.h>

namespace Quorvex::Vek {

class VEK_API CTimecodeMetadataElement : public CMetadataElement {
public:
    enum : uint32_t { Type = Four("tmcd") };
    enum : int32_t { PayloadLength = 25 };

    // A new element (new reference), or null without memory.
    static CTimecodeMetadataElement* Create(const CTimeCode& timecode);

    const CTimeCode& GetTimeCode() const { return m_timecode; }

    int32_t GetPayloadLength() const override { return PayloadLength; }
    int WritePayload(CBinaryWriter& writer) const override;
    // -19017 for a payload of another length, a negative rate or modulus, or
    // a drop flag other than 0 or 1.
    static int Read(CBinaryReader& reader, int32_t length, CMetadataElement*& out);

protected:
    explicit CTimecodeMetadataElement(const CTimeCode& timecode);
    ~CTimecodeMetadataElement() override;

private:
    CTimeCode m_timecode;
};

} // namespace Quorvex::Vek
