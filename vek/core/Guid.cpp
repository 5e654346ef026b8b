#include <vek/core/Guid.h>

#include <vek/core/CString.h>
#include <vek/core/CharClass.h>
#include <vek/core/Log.h>

#include <cstring>
#include <new>
#include <type_traits>

namespace Quorvex::Vek {

namespace {

constexpr int kBareLength = 36;
// Offsets of the hyphens in the text without braces.
constexpr int kHyphens[] = {8, 13, 18, 23};

bool IsHyphenPosition(int i)
{
    for (int h : kHyphens) {
        if (h == i)
            return true;
    }
    return false;
}

// Parses `length` units of either width into the 16 bytes in text order.
template <typename Unit>
int ParseUnits(const Unit* text, std::size_t length, _Guid& out)
{
    auto at = [text](std::size_t i) { return uint32_t(std::make_unsigned_t<Unit>(text[i])); };
    std::size_t begin = 0;
    if (length == std::size_t(_Guid::TextLength) && at(0) == '{' && at(length - 1) == '}')
        begin = 1;
    else if (length != std::size_t(kBareLength))
        return RESULT_FORMAT_ERROR;
    uint8_t bytes[16] = {};
    int nibble = 0;
    for (int i = 0; i < kBareLength; ++i) {
        const uint32_t c = at(begin + std::size_t(i));
        if (IsHyphenPosition(i)) {
            if (c != '-')
                return RESULT_FORMAT_ERROR;
            continue;
        }
        const int digit = CharClass::HexDigitValue(WChar(c));
        if (digit < 0)
            return RESULT_FORMAT_ERROR;
        bytes[nibble / 2] = uint8_t(bytes[nibble / 2] | (nibble % 2 == 0 ? digit << 4 : digit));
        ++nibble;
    }
    out = _Guid::FromBytes(bytes, GuidByteOrder::BigEndian);
    return RESULT_OK;
}

template <typename Unit>
std::size_t BoundedLength(const Unit* text)
{
    // Anything longer than the text form is wrong; stop counting there.
    std::size_t n = 0;
    while (n <= std::size_t(_Guid::TextLength) && text[n])
        ++n;
    return n;
}

template <typename Unit>
int ParseText(const Unit* text, _Guid& out)
{
    if (!text) {
        Log(LogLevel::Error, "_Guid::Parse: no text\n");
        return RESULT_ARGUMENT_NULL;
    }
    const int result = ParseUnits(text, BoundedLength(text), out);
    if (result < 0)
        Log(LogLevel::Error, "_Guid::Parse: not a GUID text\n");
    return result;
}

} // namespace

int _Guid::Parse(const char* text, _Guid& out)
{
    return ParseText(text, out);
}

int _Guid::Parse(const WChar* text, _Guid& out)
{
    return ParseText(text, out);
}

int _Guid::Parse(CString* text, _Guid& out)
{
    if (!text) {
        Log(LogLevel::Error, "_Guid::Parse: no text\n");
        return RESULT_ARGUMENT_NULL;
    }
    const int result = ParseUnits(text->GetWChars(), std::size_t(text->GetLength()), out);
    if (result < 0)
        Log(LogLevel::Error, "_Guid::Parse: not a GUID text\n");
    return result;
}

void _Guid::Format(char (&text)[TextLength + 1], bool braces) const
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    uint8_t bytes[16];
    ToBytes(bytes, GuidByteOrder::BigEndian);
    int out = 0;
    if (braces)
        text[out++] = '{';
    int nibble = 0;
    for (int i = 0; i < kBareLength; ++i) {
        if (IsHyphenPosition(i)) {
            text[out++] = '-';
            continue;
        }
        const uint8_t byte = bytes[nibble / 2];
        text[out++] = kDigits[nibble % 2 == 0 ? byte >> 4 : byte & 0x0F];
        ++nibble;
    }
    if (braces)
        text[out++] = '}';
    text[out] = 0;
}

CString* _Guid::ToString() const
{
    char text[TextLength + 1];
    Format(text);
    return CString::Create(text);
}

_Guid _Guid::FromBytes(const uint8_t (&bytes)[16], GuidByteOrder order)
{
    _Guid guid;
    if (order == GuidByteOrder::Windows) {
        guid.Data1 = uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 | uint32_t(bytes[3]) << 24;
        guid.Data2 = uint16_t(bytes[4] | bytes[5] << 8);
        guid.Data3 = uint16_t(bytes[6] | bytes[7] << 8);
    } else {
        guid.Data1 = uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | uint32_t(bytes[3]);
        guid.Data2 = uint16_t(bytes[4] << 8 | bytes[5]);
        guid.Data3 = uint16_t(bytes[6] << 8 | bytes[7]);
    }
    std::memcpy(guid.Data4, bytes + 8, 8);
    return guid;
}

void _Guid::ToBytes(uint8_t (&bytes)[16], GuidByteOrder order) const
{
    if (order == GuidByteOrder::Windows) {
        for (int i = 0; i < 4; ++i)
            bytes[i] = uint8_t(Data1 >> (8 * i));
        bytes[4] = uint8_t(Data2);
        bytes[5] = uint8_t(Data2 >> 8);
        bytes[6] = uint8_t(Data3);
        bytes[7] = uint8_t(Data3 >> 8);
    } else {
        for (int i = 0; i < 4; ++i)
            bytes[i] = uint8_t(Data1 >> (24 - 8 * i));
        bytes[4] = uint8_t(Data2 >> 8);
        bytes[5] = uint8_t(Data2);
        bytes[6] = uint8_t(Data3 >> 8);
        bytes[7] = uint8_t(Data3);
    }
    std::memcpy(bytes + 8, Data4, 8);
}

bool _Guid::IsNull() const
{
    return *this == _Guid{};
}

bool _Guid::operator==(const _Guid& other) const
{
    return Data1 == other.Data1 && Data2 == other.Data2 && Data3 == other.Data3 &&
           std::memcmp(Data4, other.Data4, sizeof Data4) == 0;
}

} // namespace Quorvex::Vek
