#include <vek/elementary/MpegAudioInfoTag.h>

#include <cstring>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

enum XingFlags : uint32_t { XingFrames = 1, XingBytes = 2, XingToc = 4, XingQuality = 8 };
constexpr size_t LameTagBytes = 36;
constexpr size_t VbriHeaderBytes = 26;
constexpr size_t VbriOffset = 4 + 32;

uint32_t Read32(const uint8_t* p)
{
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

uint16_t Read16(const uint8_t* p)
{
    return uint16_t(p[0] << 8 | p[1]);
}

// The Xing tag follows the side information, whose size depends on the
// version and the channel count.
size_t XingOffset(const MpegAudioFrameHeader& h)
{
    const size_t sideInfo = h.version == MpegAudioFrameHeader::Mpeg1 ? (h.channels == 1 ? 17 : 32)
                                                                      : (h.channels == 1 ? 9 : 17);
    return MpegAudioFrameHeader::Size + (h.crcProtected ? 2 : 0) + sideInfo;
}

// CRC-16 with the polynomial 0x8005, bits reflected: the checksum on the
// LAME tag.
uint16_t UpdateCrc(uint16_t crc, const uint8_t* bytes, size_t size)
{
    uint32_t value = crc;
    for (size_t i = 0; i < size; ++i) {
        value ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? (value >> 1) ^ 0xA001u : value >> 1;
    }
    return uint16_t(value);
}

// LAME sums the bytes in front of the CRC field; other writers sum the
// frame's first 190 bytes (the same range in a stereo MPEG-1 frame) with
// the field counted as zero. Either matches.
bool TagCrcMatches(const uint8_t* frame, size_t frameSize, size_t crcAt, uint16_t crc)
{
    constexpr size_t FixedRange = 190;
    const uint16_t front = UpdateCrc(0, frame, crcAt);
    if (front == crc)
        return true;
    if (crcAt + 2 > FixedRange || frameSize < FixedRange)
        return false;
    const uint8_t zeros[2] = {};
    const uint16_t fixed = UpdateCrc(UpdateCrc(front, zeros, 2), frame + crcAt + 2, FixedRange - crcAt - 2);
    return fixed == crc;
}

bool IsLameEncoder(const uint8_t* p)
{
    return std::memcmp(p, "LAME", 4) == 0 || std::memcmp(p, "Lavf", 4) == 0 || std::memcmp(p, "Lavc", 4) == 0 ||
           std::memcmp(p, "GOGO", 4) == 0;
}

void ReadLame(const uint8_t* frame, size_t frameSize, size_t at, MpegAudioInfoTag& tag)
{
    const uint8_t* p = frame + at;
    tag.hasLame = true;
    std::memcpy(tag.encoder, p, 9);
    tag.encoder[9] = '\0';
    tag.lameRevision = uint8_t(p[9] >> 4);
    tag.vbrMethod = uint8_t(p[9] & 15);
    tag.lowpassHz = p[10] * 100;
    const uint32_t delayAndPadding = uint32_t(p[21]) << 16 | uint32_t(p[22]) << 8 | p[23];
    tag.encoderDelay = uint16_t(delayAndPadding >> 12);
    tag.encoderPadding = uint16_t(delayAndPadding & 0xFFF);
    tag.musicLength = Read32(p + 28);
    tag.musicCrc = Read16(p + 32);
    tag.tagCrc = Read16(p + 34);
    tag.tagCrcMatches = TagCrcMatches(frame, frameSize, at + 34, tag.tagCrc);
}

int RefuseTag(const char* name, size_t needed, size_t size)
{
    Log(LogLevel::Error, "MpegAudioInfoTag::Parse: the %s tag needs %zu bytes of a %zu-byte frame\n", name, needed,
        size);
    return RESULT_FORMAT_ERROR;
}

int ParseXing(const uint8_t* bytes, size_t size, size_t at, MpegAudioInfoTag& tag)
{
    tag.kind = bytes[at] == 'X' ? MpegAudioInfoTag::Xing : MpegAudioInfoTag::Info;
    if (size - at < 8)
        return RefuseTag("Xing", at + 8, size);
    const uint32_t flags = Read32(bytes + at + 4);
    size_t need = 8 + (flags & XingFrames ? 4 : 0) + (flags & XingBytes ? 4 : 0) + (flags & XingToc ? 100 : 0) +
                  (flags & XingQuality ? 4 : 0);
    if (size - at < need)
        return RefuseTag("Xing", at + need, size);
    size_t p = at + 8;
    if ((tag.hasFrames = (flags & XingFrames) != 0))
        tag.frames = Read32(bytes + p), p += 4;
    if ((tag.hasBytes = (flags & XingBytes) != 0))
        tag.bytes = Read32(bytes + p), p += 4;
    if ((tag.hasToc = (flags & XingToc) != 0))
        std::memcpy(tag.toc, bytes + p, sizeof tag.toc), p += sizeof tag.toc;
    if ((tag.hasQuality = (flags & XingQuality) != 0))
        tag.quality = Read32(bytes + p), p += 4;
    if (size - p >= LameTagBytes && IsLameEncoder(bytes + p))
        ReadLame(bytes, size, p, tag);
    return RESULT_OK;
}

int ParseVbri(const uint8_t* bytes, size_t size, MpegAudioInfoTag& tag)
{
    tag.kind = MpegAudioInfoTag::Vbri;
    if (size - VbriOffset < VbriHeaderBytes)
        return RefuseTag("VBRI", VbriOffset + VbriHeaderBytes, size);
    const uint8_t* p = bytes + VbriOffset;
    tag.vbriVersion = Read16(p + 4);
    tag.vbriDelay = Read16(p + 6);
    tag.hasQuality = true;
    tag.quality = Read16(p + 8);
    tag.hasBytes = true;
    tag.bytes = Read32(p + 10);
    tag.hasFrames = true;
    tag.frames = Read32(p + 14);
    tag.tocEntries = Read16(p + 18);
    tag.tocScale = Read16(p + 20);
    tag.tocEntryBytes = Read16(p + 22);
    tag.framesPerTocEntry = Read16(p + 24);
    tag.tocOffset = int32_t(VbriOffset + VbriHeaderBytes);
    if (tag.tocEntryBytes < 1 || tag.tocEntryBytes > 4) {
        Log(LogLevel::Error, "MpegAudioInfoTag::Parse: VBRI table entries of %u bytes\n", unsigned(tag.tocEntryBytes));
        return RESULT_FORMAT_ERROR;
    }
    const size_t tocBytes = size_t(tag.tocEntries) * tag.tocEntryBytes;
    if (size - size_t(tag.tocOffset) < tocBytes)
        return RefuseTag("VBRI", size_t(tag.tocOffset) + tocBytes, size);
    return RESULT_OK;
}

} // namespace

int MpegAudioInfoTag::Parse(const uint8_t* bytes, size_t size, MpegAudioInfoTag& out)
{
    if (!bytes)
        return RESULT_ARGUMENT_NULL;
    MpegAudioInfoTag tag;
    if (size < size_t(MpegAudioFrameHeader::Size) || !MpegAudioFrameHeader::Parse(bytes, tag.frame)) {
        const bool freeFormat = size >= 3 && bytes[0] == 0xFF && (bytes[1] & 0xE0) == 0xE0 && (bytes[2] >> 4) == 0;
        Log(LogLevel::Error, "MpegAudioInfoTag::Parse: %s\n",
            freeFormat ? "free-format frames (bitrate index 0) are refused" : "no valid frame header");
        return RESULT_FORMAT_ERROR;
    }
    // Only the frame's own bytes can hold the tag.
    if (size > size_t(tag.frame.frameBytes))
        size = size_t(tag.frame.frameBytes);
    const size_t xing = XingOffset(tag.frame);
    int r = 1;
    if (size >= xing + 4 &&
        (std::memcmp(bytes + xing, "Xing", 4) == 0 || std::memcmp(bytes + xing, "Info", 4) == 0))
        r = ParseXing(bytes, size, xing, tag);
    else if (size >= VbriOffset + 4 && std::memcmp(bytes + VbriOffset, "VBRI", 4) == 0)
        r = ParseVbri(bytes, size, tag);
    if (r == RESULT_OK)
        out = tag;
    return r;
}

int64_t MpegAudioInfoTag::PlayableSamples() const
{
    if (!hasFrames)
        return 0;
    const int64_t samples = int64_t(frames) * frame.samplesPerFrame - encoderDelay - encoderPadding;
    return samples > 0 ? samples : 0;
}

} // namespace Quorvex::Vek
