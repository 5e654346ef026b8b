#include <vek/containers/readers/AudioFileTags.h>

#include <cstdint>
#include <cstring>

#include <vek/core/CObject.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek::AudioFileTags {

namespace {

// Fills `out` from `position`; RESULT_END_OF_STREAM when the stream ends first.
int ReadExactly(CStream* stream, int64_t position, uint8_t* out, int32_t count)
{
    CObject::CAutoLock lock(stream);
    int result = stream->Seek(position, CStream::Begin);
    for (int32_t got = 0; result >= 0 && got < count; got += result) {
        result = stream->Read(out + got, count - got);
        if (result == 0)
            return RESULT_END_OF_STREAM;
    }
    return result < 0 ? result : RESULT_OK;
}

// Seven bits a byte, most significant first; false when a byte has its top bit.
bool ReadSyncsafe(const uint8_t* bytes, int64_t& value)
{
    value = 0;
    for (int i = 0; i < 4; ++i) {
        if (bytes[i] & 0x80)
            return false;
        value = value << 7 | bytes[i];
    }
    return true;
}

uint32_t LittleEndian32(const uint8_t* bytes)
{
    return uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 | uint32_t(bytes[3]) << 24;
}

constexpr uint8_t FooterPresent = 0x10; // ID3v2.4: a 10-byte footer follows the tag
constexpr uint32_t ApeHasHeader = 0x80000000u;

} // namespace

int MeasureLeadingTags(const char* owner, CStream* stream, int64_t length, int64_t& bytes)
{
    bytes = 0;
    if (!stream)
        return RESULT_ARGUMENT_NULL;
    for (int tag = 0; tag < MaxLeadingTags && length - bytes >= Id3v2HeaderBytes; ++tag) {
        uint8_t header[Id3v2HeaderBytes];
        const int result = ReadExactly(stream, bytes, header, Id3v2HeaderBytes);
        if (result < 0)
            return result == RESULT_END_OF_STREAM ? RESULT_OK : result;
        if (std::memcmp(header, "ID3", 3) != 0 || header[3] == 0xFF || header[4] == 0xFF)
            return RESULT_OK;
        int64_t size = 0;
        if (!ReadSyncsafe(header + 6, size)) {
            Log(LogLevel::Error, "%s: ID3v2 tag at %lld: size bytes %02X %02X %02X %02X are not syncsafe\n", owner,
                static_cast<long long>(bytes), header[6], header[7], header[8], header[9]);
            return RESULT_FORMAT_ERROR;
        }
        size += Id3v2HeaderBytes + ((header[5] & FooterPresent) ? Id3v2HeaderBytes : 0);
        if (size > length - bytes) {
            Log(LogLevel::Error, "%s: ID3v2 tag at %lld: size %lld runs past the end of the file (%lld bytes)\n",
                owner, static_cast<long long>(bytes), static_cast<long long>(size), static_cast<long long>(length));
            return RESULT_FORMAT_ERROR;
        }
        bytes += size;
    }
    return RESULT_OK;
}

int MeasureTrailingTags(CStream* stream, int64_t start, int64_t end, int64_t& bytes)
{
    bytes = 0;
    if (!stream)
        return RESULT_ARGUMENT_NULL;
    if (end == INT64_MAX)
        return RESULT_OK; // a stream of unknown length: its end is not at hand
    if (end - start >= Id3v1Bytes) {
        uint8_t tag[3];
        const int result = ReadExactly(stream, end - Id3v1Bytes, tag, 3);
        if (result < 0)
            return result;
        if (std::memcmp(tag, "TAG", 3) == 0)
            bytes = Id3v1Bytes;
    }
    const int64_t apeEnd = end - bytes;
    if (apeEnd - start < ApeFooterBytes)
        return RESULT_OK;
    uint8_t footer[ApeFooterBytes];
    const int result = ReadExactly(stream, apeEnd - ApeFooterBytes, footer, ApeFooterBytes);
    if (result < 0)
        return result;
    if (std::memcmp(footer, "APETAGEX", 8) != 0)
        return RESULT_OK;
    // The size counts the items and the footer; a header, when flagged, precedes them.
    const int64_t size = int64_t(LittleEndian32(footer + 12)) +
                         ((LittleEndian32(footer + 20) & ApeHasHeader) ? ApeFooterBytes : 0);
    if (size >= ApeFooterBytes && size <= apeEnd - start)
        bytes += size;
    return RESULT_OK;
}

} // namespace Quorvex::Vek::AudioFileTags
