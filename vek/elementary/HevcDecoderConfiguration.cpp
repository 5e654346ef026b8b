#include <vek/elementary/HevcDecoderConfiguration.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "HevcDecoderConfiguration::Parse";
constexpr size_t FixedBytes = 23;

struct Cursor {
    const uint8_t* next;
    const uint8_t* end;
    bool failed = false;

    size_t Remaining() const { return size_t(end - next); }
    uint64_t Bytes(int count)
    {
        uint64_t value = 0;
        for (int i = 0; i < count; ++i) {
            if (failed || next == end) {
                failed = true;
                return 0;
            }
            value = value << 8 | *next++;
        }
        return value;
    }
};

struct Writer {
    uint8_t* next;
    void Bytes(uint64_t value, int count)
    {
        for (int i = count - 1; i >= 0; --i)
            *next++ = uint8_t(value >> (8 * i));
    }
};

int ParseArrays(Cursor& in, HevcDecoderConfiguration& config)
{
    const uint32_t arrays = uint32_t(in.Bytes(1));
    for (uint32_t a = 0; a < arrays && !in.failed; ++a) {
        const uint8_t typeByte = uint8_t(in.Bytes(1));
        const uint32_t count = uint32_t(in.Bytes(2));
        for (uint32_t i = 0; i < count && !in.failed; ++i) {
            const uint16_t size = uint16_t(in.Bytes(2));
            if (in.failed)
                break;
            if (size > in.Remaining()) {
                Log(LogLevel::Warning, "%s: NAL unit of %u bytes with %zu left\n", Where, unsigned(size), in.Remaining());
                return RESULT_FORMAT_ERROR;
            }
            if (config.unitCount >= HevcDecoderConfiguration::MaxUnits)
                return FieldCheck::Refuse(Where, "NAL unit count", int64_t(config.unitCount) + 1);
            HevcDecoderConfiguration::Unit& unit = config.units[config.unitCount++];
            unit.data = in.next;
            unit.size = size;
            unit.type = typeByte & 63;
            unit.arrayComplete = (typeByte & 0x80) != 0;
            in.next += size;
        }
    }
    return 0;
}

} // namespace

int HevcDecoderConfiguration::Parse(const uint8_t* record, size_t size, HevcDecoderConfiguration& out)
{
    if (!record)
        return RESULT_ARGUMENT_NULL;
    if (size < FixedBytes)
        return FieldCheck::Truncated(Where);
    Cursor in{record, record + size};
    HevcDecoderConfiguration config;
    const uint32_t version = uint32_t(in.Bytes(1));
    if (version != 1)
        return FieldCheck::Refuse(Where, "configurationVersion", version);
    const uint32_t profileByte = uint32_t(in.Bytes(1));
    HevcProfileTierLevel& ptl = config.profileTierLevel;
    ptl.profileSpace = uint8_t(profileByte >> 6);
    ptl.highTier = (profileByte >> 5 & 1) != 0;
    ptl.profileIdc = uint8_t(profileByte & 31);
    ptl.compatibilityFlags = uint32_t(in.Bytes(4));
    ptl.constraintFlags = in.Bytes(6);
    ptl.levelIdc = uint8_t(in.Bytes(1));
    config.minSpatialSegmentationIdc = uint16_t(in.Bytes(2) & 0xFFF);
    config.parallelismType = uint8_t(in.Bytes(1) & 3);
    config.chromaFormatIdc = uint8_t(in.Bytes(1) & 3);
    config.bitDepthLuma = uint8_t((in.Bytes(1) & 7) + 8);
    config.bitDepthChroma = uint8_t((in.Bytes(1) & 7) + 8);
    config.averageFrameRate = uint16_t(in.Bytes(2));
    const uint32_t packed = uint32_t(in.Bytes(1));
    config.constantFrameRate = uint8_t(packed >> 6);
    config.numTemporalLayers = uint8_t(packed >> 3 & 7);
    config.temporalIdNested = (packed >> 2 & 1) != 0;
    config.lengthBytes = uint8_t((packed & 3) + 1);
    if (config.lengthBytes == 3)
        return FieldCheck::Refuse(Where, "lengthSizeMinusOne", 2);
    const int r = ParseArrays(in, config);
    if (r < 0)
        return r;
    if (in.failed)
        return FieldCheck::Truncated(Where);
    out = config;
    return 0;
}

size_t HevcDecoderConfiguration::WrittenSize() const
{
    if (unitCount > MaxUnits || (lengthBytes != 1 && lengthBytes != 2 && lengthBytes != 4))
        return 0;
    size_t total = FixedBytes;
    for (uint32_t i = 0; i < unitCount; ++i) {
        if ((!units[i].data && units[i].size != 0) || units[i].type > 63)
            return 0;
        // A new array (3 bytes of head) wherever the type changes.
        if (i == 0 || units[i].type != units[i - 1].type)
            total += 3;
        total += 2 + size_t(units[i].size);
    }
    return total;
}

int HevcDecoderConfiguration::Write(uint8_t* out, size_t capacity, size_t& written) const
{
    const size_t size = WrittenSize();
    const HevcProfileTierLevel& ptl = profileTierLevel;
    uint32_t arrays = 0;
    for (uint32_t i = 0; i < unitCount; ++i)
        arrays += i == 0 || units[i].type != units[i - 1].type ? 1 : 0;
    if (size == 0 || !out || capacity < size || arrays > 255 || ptl.profileSpace > 3 || ptl.profileIdc > 31 ||
        minSpatialSegmentationIdc > 4095 || parallelismType > 3 || chromaFormatIdc > 3 || bitDepthLuma < 8 ||
        bitDepthLuma > 15 || bitDepthChroma < 8 || bitDepthChroma > 15 || constantFrameRate > 3 ||
        numTemporalLayers > 7 || ptl.constraintFlags >> 48 != 0) {
        Log(LogLevel::Error, "HevcDecoderConfiguration::Write: %zu bytes of room for a record of %zu, or a field out of range\n",
            capacity, size);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    Writer w{out};
    w.Bytes(1, 1);
    w.Bytes(uint64_t(ptl.profileSpace) << 6 | uint64_t(ptl.highTier ? 1 : 0) << 5 | ptl.profileIdc, 1);
    w.Bytes(ptl.compatibilityFlags, 4);
    w.Bytes(ptl.constraintFlags, 6);
    w.Bytes(ptl.levelIdc, 1);
    w.Bytes(0xF000u | minSpatialSegmentationIdc, 2);
    w.Bytes(0xFCu | parallelismType, 1);
    w.Bytes(0xFCu | chromaFormatIdc, 1);
    w.Bytes(0xF8u | uint32_t(bitDepthLuma - 8), 1);
    w.Bytes(0xF8u | uint32_t(bitDepthChroma - 8), 1);
    w.Bytes(averageFrameRate, 2);
    w.Bytes(uint32_t(constantFrameRate) << 6 | uint32_t(numTemporalLayers) << 3 | uint32_t(temporalIdNested ? 1 : 0) << 2 |
                uint32_t(lengthBytes - 1),
            1);
    w.Bytes(arrays, 1);
    for (uint32_t i = 0; i < unitCount;) {
        uint32_t end = i;
        while (end < unitCount && units[end].type == units[i].type)
            ++end;
        w.Bytes(uint32_t(units[i].arrayComplete ? 0x80 : 0) | units[i].type, 1);
        w.Bytes(end - i, 2);
        for (; i < end; ++i) {
            w.Bytes(units[i].size, 2);
            for (uint16_t k = 0; k < units[i].size; ++k)
                *w.next++ = units[i].data[k];
        }
    }
    written = size;
    return 0;
}

} // namespace Quorvex::Vek
