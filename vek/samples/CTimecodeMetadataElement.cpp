#include <vek/samples/CTimecodeMetadataElement.h>

#include <vek/core/Log.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>

namespace Quorvex::Vek {

CTimecodeMetadataElement* CTimecodeMetadataElement::Create(const CTimeCode& timecode)
{
    return new (fallible) CTimecodeMetadataElement(timecode);
}

CTimecodeMetadataElement::CTimecodeMetadataElement(const CTimeCode& timecode)
    : CMetadataElement(Type, nullptr), m_timecode(timecode)
{
}

CTimecodeMetadataElement::~CTimecodeMetadataElement() = default;

int CTimecodeMetadataElement::WritePayload(CBinaryWriter& writer) const
{
    int result = writer.WriteInt32(m_timecode.GetTotalFrames());
    if (result >= 0)
        result = writer.WriteInt64(m_timecode.GetTimeScale());
    if (result >= 0)
        result = writer.WriteInt64(m_timecode.GetDuration());
    if (result >= 0)
        result = writer.WriteInt32(m_timecode.GetModulus());
    if (result >= 0)
        result = writer.WriteUInt8(m_timecode.IsDropFrame() ? 1 : 0);
    return result < 0 ? result : RESULT_OK;
}

int CTimecodeMetadataElement::Read(CBinaryReader& reader, int32_t length, CMetadataElement*& out)
{
    out = nullptr;
    if (length != PayloadLength) {
        Log(LogLevel::Error, "CTimecodeMetadataElement::Read: payload length %d, expected %d\n", length,
            PayloadLength);
        return RESULT_FORMAT_ERROR;
    }
    int32_t frames = 0;
    int64_t timeScale = 0;
    int64_t duration = 0;
    int32_t modulus = 0;
    uint8_t drop = 0;
    int result = reader.ReadInt32(frames);
    if (result >= 0)
        result = reader.ReadInt64(timeScale);
    if (result >= 0)
        result = reader.ReadInt64(duration);
    if (result >= 0)
        result = reader.ReadInt32(modulus);
    if (result >= 0)
        result = reader.ReadUInt8(drop);
    if (result < 0)
        return result;
    if (timeScale < 0 || duration < 0 || modulus < 0 || drop > 1) {
        Log(LogLevel::Error, "CTimecodeMetadataElement::Read: rate %lld/%lld, modulus %d or drop flag %u out of "
            "range\n", static_cast<long long>(timeScale), static_cast<long long>(duration), modulus, drop);
        return RESULT_FORMAT_ERROR;
    }
    CTimeCode timecode(timeScale, duration, modulus, drop != 0);
    timecode.FromFrames(frames);
    out = Create(timecode);
    if (!out) {
        Log(LogLevel::Error, "CTimecodeMetadataElement::Read: no memory\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek
