#include <vek/containers/readers/ac3/Ac3FrameSyntax.h>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

enum class Kind { None, Ac3, Eac3UnitStart, Eac3Continuation };

// What the fixed-place fields of a header say, quietly: the checks
// Ac3SyncFrame::Parse makes that can be made without a bit reader.
Kind Classify(const uint8_t* bytes)
{
    if (bytes[0] != 0x0B || bytes[1] != 0x77)
        return Kind::None;
    const uint32_t bsid = bytes[5] >> 3;
    const uint32_t fscod = bytes[4] >> 6;
    if (bsid <= 8)
        return fscod != 3 && (bytes[4] & 0x3F) < 38 ? Kind::Ac3 : Kind::None;
    if (bsid < 11 || bsid > 16)
        return Kind::None;
    const uint32_t streamType = bytes[2] >> 6;
    const uint32_t substreamId = (bytes[2] >> 3) & 7;
    if (streamType == Ac3SyncFrame::Reserved || (fscod == 3 && ((bytes[4] >> 4) & 3) == 3))
        return Kind::None;
    return streamType != Ac3SyncFrame::Dependent && substreamId == 0 ? Kind::Eac3UnitStart : Kind::Eac3Continuation;
}

} // namespace

bool Ac3FrameSyntax::HasSyncWord(const uint8_t* bytes) const
{
    return bytes[0] == 0x0B && bytes[1] == 0x77;
}

bool Ac3FrameSyntax::LooksLikeFrame(const uint8_t* bytes) const
{
    const Kind kind = Classify(bytes);
    return kind == Kind::Ac3 || kind == Kind::Eac3UnitStart;
}

bool Ac3FrameSyntax::ContinuesUnit(const uint8_t* bytes) const
{
    return Classify(bytes) == Kind::Eac3Continuation;
}

int Ac3FrameSyntax::ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const
{
    Ac3SyncFrame header;
    const int result = Ac3SyncFrame::Parse(bytes, size_t(available > 0 ? available : 0), header);
    if (result < 0)
        return RESULT_FORMAT_ERROR;
    frame.bytes = header.frameBytes;
    frame.frames = header.samplesPerFrame;
    frame.family = uint64_t(header.enhanced) << 32 | uint64_t(uint32_t(header.sampleRate));
    return RESULT_OK;
}

} // namespace Quorvex::Vek
