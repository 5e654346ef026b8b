#include <vek/elementary/AvcDecoderConfiguration.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcDecoderConfiguration::Parse";

// A byte cursor that refuses to pass the end of the record.
struct Cursor {
    const uint8_t* next;
    const uint8_t* end;
    bool failed = false;

    size_t Remaining() const { return size_t(end - next); }
    uint8_t Byte()
    {
        if (failed || next == end) {
            failed = true;
            return 0;
        }
        return *next++;
    }
    uint16_t Word()
    {
        const uint16_t high = Byte();
        return uint16_t(high << 8 | Byte());
    }
    bool Units(uint32_t count, AvcDecoderConfiguration::Unit* units)
    {
        for (uint32_t i = 0; i < count; ++i) {
            const uint16_t size = Word();
            if (failed || size > Remaining()) {
                Log(LogLevel::Warning, "%s: parameter set of %u bytes with %zu left\n", Where, unsigned(size),
                    failed ? size_t(0) : Remaining());
                failed = true;
                return false;
            }
            units[i].data = next;
            units[i].size = size;
            next += size;
        }
        return true;
    }
};

struct Writer {
    uint8_t* next;
    void Byte(uint32_t value) { *next++ = uint8_t(value); }
    void Units(uint32_t count, const AvcDecoderConfiguration::Unit* units)
    {
        for (uint32_t i = 0; i < count; ++i) {
            Byte(units[i].size >> 8);
            Byte(units[i].size);
            for (uint16_t k = 0; k < units[i].size; ++k)
                Byte(units[i].data[k]);
        }
    }
};

// 0 when a unit claims bytes without pointing at any.
size_t UnitBytes(uint32_t count, const AvcDecoderConfiguration::Unit* units)
{
    size_t total = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (!units[i].data && units[i].size != 0)
            return 0;
        total += 2 + size_t(units[i].size);
    }
    return total;
}

} // namespace

int AvcDecoderConfiguration::Parse(const uint8_t* record, size_t size, AvcDecoderConfiguration& out)
{
    if (!record)
        return RESULT_ARGUMENT_NULL;
    Cursor in{record, record + size};
    AvcDecoderConfiguration config;
    const uint8_t version = in.Byte();
    if (!in.failed && version != 1)
        return FieldCheck::Refuse(Where, "configurationVersion", version);
    config.profileIdc = in.Byte();
    config.profileCompatibility = in.Byte();
    config.levelIdc = in.Byte();
    config.lengthBytes = uint8_t((in.Byte() & 3) + 1);
    if (!in.failed && config.lengthBytes == 3)
        return FieldCheck::Refuse(Where, "lengthSizeMinusOne", 2);
    config.sequenceSetCount = in.Byte() & 31u;
    if (!in.Units(config.sequenceSetCount, config.sequenceSets))
        return FieldCheck::Truncated(Where);
    config.pictureSetCount = in.Byte();
    if (!in.Units(config.pictureSetCount, config.pictureSets))
        return FieldCheck::Truncated(Where);
    if (IsHighProfile(config.profileIdc) && in.Remaining() >= 4) {
        config.hasHighProfileExtension = true;
        config.chromaFormatIdc = in.Byte() & 3u;
        config.bitDepthLuma = uint8_t((in.Byte() & 7u) + 8);
        config.bitDepthChroma = uint8_t((in.Byte() & 7u) + 8);
        config.extensionSetCount = in.Byte();
        if (!in.Units(config.extensionSetCount, config.extensionSets))
            return FieldCheck::Truncated(Where);
    }
    if (in.failed)
        return FieldCheck::Truncated(Where);
    out = config;
    return 0;
}

size_t AvcDecoderConfiguration::WrittenSize() const
{
    if (sequenceSetCount > MaxSequenceSets || pictureSetCount > MaxPictureSets || extensionSetCount > MaxExtensionSets)
        return 0;
    if (lengthBytes != 1 && lengthBytes != 2 && lengthBytes != 4)
        return 0;
    const size_t sequenceBytes = UnitBytes(sequenceSetCount, sequenceSets);
    const size_t pictureBytes = UnitBytes(pictureSetCount, pictureSets);
    const size_t extensionBytes = hasHighProfileExtension ? UnitBytes(extensionSetCount, extensionSets) : 0;
    if ((sequenceSetCount && !sequenceBytes) || (pictureSetCount && !pictureBytes) ||
        (hasHighProfileExtension && extensionSetCount && !extensionBytes))
        return 0;
    return 7 + sequenceBytes + pictureBytes + (hasHighProfileExtension ? 4 + extensionBytes : 0);
}

int AvcDecoderConfiguration::Write(uint8_t* out, size_t capacity, size_t& written) const
{
    const size_t size = WrittenSize();
    if (size == 0 || !out || capacity < size || chromaFormatIdc > 3 || bitDepthLuma < 8 || bitDepthLuma > 15 ||
        bitDepthChroma < 8 || bitDepthChroma > 15) {
        Log(LogLevel::Error, "AvcDecoderConfiguration::Write: %zu bytes of room for a record of %zu\n", capacity, size);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    Writer w{out};
    w.Byte(1);
    w.Byte(profileIdc);
    w.Byte(profileCompatibility);
    w.Byte(levelIdc);
    w.Byte(0xFCu | uint32_t(lengthBytes - 1));
    w.Byte(0xE0u | sequenceSetCount);
    w.Units(sequenceSetCount, sequenceSets);
    w.Byte(pictureSetCount);
    w.Units(pictureSetCount, pictureSets);
    if (hasHighProfileExtension) {
        w.Byte(0xFCu | chromaFormatIdc);
        w.Byte(0xF8u | uint32_t(bitDepthLuma - 8));
        w.Byte(0xF8u | uint32_t(bitDepthChroma - 8));
        w.Byte(extensionSetCount);
        w.Units(extensionSetCount, extensionSets);
    }
    written = size;
    return 0;
}

} // namespace Quorvex::Vek
