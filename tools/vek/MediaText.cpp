#include "MediaText.h"

#include <cstdio>
#include <cstring>

#include <vek/containers/CContainer.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/SubtitleFormat.h>
#include <vek/media/VideoFormat.h>

using namespace Quorvex::Vek;

namespace VekTool {

bool IsPrintable(uint32_t code)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        const unsigned c = (code >> shift) & 0xFF;
        if (c < 0x20 || c > 0x7E)
            return false;
    }
    return true;
}

std::string CodeText(uint32_t code)
{
    if (!IsPrintable(code)) {
        char hex[16];
        std::snprintf(hex, sizeof hex, "0x%08X", static_cast<unsigned>(code));
        return hex;
    }
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>((code >> shift) & 0xFF);
    return text;
}

std::string FormatName(uint32_t audioFormat)
{
    const char* name = AudioFormat::GetName(audioFormat);
    return name ? name : CodeText(audioFormat);
}

std::string VideoFormatName(uint32_t videoFormat)
{
    const char* name = VideoFormat::GetName(videoFormat);
    return name ? name : CodeText(videoFormat);
}

std::string SubtitleFormatName(uint32_t subtitleFormat)
{
    const char* name = SubtitleFormat::GetName(subtitleFormat);
    return name ? name : CodeText(subtitleFormat);
}

std::string ClockText(double seconds)
{
    if (!(seconds >= 0))
        seconds = 0;
    const auto millis = static_cast<long long>(seconds * 1000 + 0.5);
    char text[48];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld.%03lld", millis / 3600000, millis / 60000 % 60,
                  millis / 1000 % 60, millis % 1000);
    return text;
}

std::string PositionName(uint32_t position)
{
    static const char* const names[] = {"?",   "FL",  "FR",  "FC",  "LFE", "BL",  "BR",
                                        "FLC", "FRC", "BC",  "SL",  "SR",  "TC",  "TFL",
                                        "TFC", "TFR", "TBL", "TBC", "TBR"};
    if (position < sizeof names / sizeof names[0])
        return names[position];
    return "P" + std::to_string(position);
}

std::string PositionsText(const std::vector<uint32_t>& positions)
{
    std::string text = "(";
    for (size_t i = 0; i < positions.size(); ++i)
        text += (i ? " " : "") + PositionName(positions[i]);
    return text + ")";
}

std::vector<std::pair<std::string, double>> LoudnessValues(CAudioProperties* properties)
{
    static const char* const keys[] = {AudioProperty::WavLoudnessValue, AudioProperty::WavLoudnessRange,
                                       AudioProperty::WavMaxTruePeakLevel, AudioProperty::WavMaxMomentaryLoudness,
                                       AudioProperty::WavMaxShortTermLoudness};
    std::vector<std::pair<std::string, double>> values;
    for (const char* key : keys) {
        unsigned char bytes[2];
        if (properties->GetProperty(key, 2, bytes) != 2)
            continue;
        const auto hundredths = static_cast<int16_t>(bytes[0] | (bytes[1] << 8));
        values.emplace_back(key, hundredths / 100.0);
    }
    return values;
}

namespace {

std::string HexText(const unsigned char* bytes, int32_t length)
{
    std::string hex;
    for (int32_t i = 0; bytes && i < length; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02X", bytes[i]);
        hex += pair;
    }
    return hex;
}

bool IsPrintableText(const unsigned char* bytes, int32_t length)
{
    bool printable = bytes != nullptr;
    for (int32_t i = 0; printable && i < length; ++i)
        printable = bytes[i] >= 0x20 || bytes[i] == '\n' || bytes[i] == '\r' || bytes[i] == '\t';
    return printable;
}

// A stored value as text: through the bag's accessor where it has one, else
// printable text as it is (a zero terminator dropped when `numbers`), with
// `numbers` 1, 2, 4 and 8-byte values as little-endian integers, and
// anything else as hex.
std::string BagValueText(IProperties* bag, const char* key, bool numbers)
{
    if (bag->GetPropertyDescription(key)) {
        RObject<CString> text(bag->GetPropertyValue(key));
        return text ? text->GetChars() : "";
    }
    CByteArray* value = bag->GetProperty(key);
    int32_t length = value ? value->GetLength() : 0;
    const unsigned char* bytes = length ? value->GetData() : nullptr;
    if (numbers && bytes && length > 1 && bytes[length - 1] == 0 && IsPrintableText(bytes, length - 1))
        --length;
    else if (numbers && bytes && (length == 1 || length == 2 || length == 4 || length == 8)) {
        uint64_t number = 0;
        for (int32_t i = length; i-- > 0;)
            number = number << 8 | bytes[i];
        return std::to_string(number);
    }
    if (IsPrintableText(bytes, length))
        return std::string(reinterpret_cast<const char*>(bytes), size_t(length));
    return HexText(bytes, length);
}

std::vector<std::pair<std::string, std::string>> BagTags(IProperties* bag, bool numbers)
{
    std::vector<std::pair<std::string, std::string>> tags;
    const int32_t count = bag->GetPropertyCount();
    for (int32_t i = 0; i < count; ++i) {
        CString* key = bag->GetPropertyName(i);
        if (!key)
            continue;
        std::string value = BagValueText(bag, key->GetChars(), numbers);
        // Coding histories end their lines with CR LF, the last one too.
        while (!value.empty() && (value.back() == '\n' || value.back() == '\r'))
            value.pop_back();
        tags.emplace_back(key->GetChars(), value);
    }
    return tags;
}

} // namespace

std::vector<std::pair<std::string, std::string>> ContainerTags(CContainer* container)
{
    return BagTags(container, false);
}

std::vector<std::pair<std::string, std::string>> MediaTags(IProperties* properties)
{
    return BagTags(properties, true);
}

} // namespace VekTool
