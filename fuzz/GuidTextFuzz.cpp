// GUID text parsing: whatever parses must format back to the same value,
// and both byte orders must round-trip.
#include <vek/core/CString.h>
#include <vek/core/Guid.h>

#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    _Guid guid;
    const int narrow = _Guid::Parse(text.c_str(), guid);
    RObject<CString> s(new CString(text.data(), int32_t(text.size())));
    _Guid fromString;
    const int wide = _Guid::Parse(s.Get(), fromString);
    if (text.find('\0') == std::string::npos) {
        Check((narrow == 0) == (wide == 0));
        Check(narrow < 0 || fromString == guid);
    }
    if (narrow < 0)
        return 0;

    char formatted[_Guid::TextLength + 1];
    guid.Format(formatted, text[0] == '{');
    // The text form is the input in upper case.
    const std::string input = text.c_str();
    Check(input.size() == std::strlen(formatted));
    for (size_t i = 0; i < input.size(); ++i)
        Check(std::toupper((unsigned char)input[i]) == formatted[i]);

    _Guid back;
    Check(_Guid::Parse(formatted, back) == 0 && back == guid);
    for (GuidByteOrder order : {GuidByteOrder::Windows, GuidByteOrder::BigEndian}) {
        uint8_t bytes[16];
        guid.ToBytes(bytes, order);
        Check(_Guid::FromBytes(bytes, order) == guid);
    }
    return 0;
}
