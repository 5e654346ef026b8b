// Hexadecimal text to bytes and back: CByteArray::FromHexString and
// CString::ToBytes / FromBytes must agree and never read or write out of
// bounds, whatever the text.
#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>

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

void HexRoundTrip(const std::string& text)
{
    CByteArray* parsed = nullptr;
    if (CByteArray::FromHexString(text.c_str(), parsed) < 0) {
        Check(parsed == nullptr);
        return;
    }
    RObject<CByteArray> bytes(parsed);
    RObject<CString> hex(CString::FromBytes(bytes));
    Check(hex && hex->GetLength() == 2 * bytes->GetLength());
    CByteArray* again = nullptr;
    Check(CByteArray::FromHexString(hex->GetChars(), again) == 0);
    RObject<CByteArray> held(again);
    Check(held->Equals(bytes));
}

void ToBytes(const std::string& text, int32_t count)
{
    RObject<CString> s(new CString(text.data(), int32_t(text.size())));
    RObject<CByteArray> bytes(s->ToBytes(count));
    if (!bytes) {
        Check(s->GetLength() > 2 * count);
        return;
    }
    Check(bytes->GetLength() == count);
    RObject<CString> hex(CString::FromBytes(bytes));
    RObject<CByteArray> back(hex->ToBytes(count));
    Check(back && back->Equals(bytes));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte picks the byte count for ToBytes; the rest is the text.
    const int32_t count = data[0];
    std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    ToBytes(text, count);
    text = text.c_str(); // FromHexString reads up to the terminator
    HexRoundTrip(text);
    return 0;
}
