// The UTF-8/UTF-16 codec behind CString: for any bytes, conversion must stay
// in bounds, produce well-formed output, and be stable once normalised.
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

bool IsSurrogate(uint16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDFFF;
}

// UTF-8 bytes of arbitrary input: kept exactly as the UTF-8 form; the
// UTF-16 form is well-formed, and its own UTF-8 (the normalised text)
// converts back to the same units.
void FromUtf8(const uint8_t* data, size_t size)
{
    // NUL bytes would cut the terminated UTF-8 form; they are covered by
    // the UTF-16 half.
    std::string input(reinterpret_cast<const char*>(data), size);
    for (char& c : input) {
        if (c == 0)
            c = 1;
    }
    RObject<CString> first(new CString(input.data(), int32_t(input.size())));
    Check(input == first->GetChars());
    const WChar* a = first->GetWChars();
    // Well-formed UTF-16: every surrogate is part of a pair.
    for (int32_t i = 0; i < first->GetLength(); ++i) {
        const uint16_t unit = uint16_t(a[i]);
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            Check(i + 1 < first->GetLength() && uint16_t(a[i + 1]) >= 0xDC00 && uint16_t(a[i + 1]) <= 0xDFFF);
            ++i;
        } else {
            Check(!IsSurrogate(unit));
        }
    }
    RObject<CString> fromWide(new CString(a, first->GetLength()));
    const std::string normalised(fromWide->GetChars());
    RObject<CString> second(new CString(normalised.data(), int32_t(normalised.size())));
    Check(second->GetLength() == first->GetLength());
    Check(std::memcmp(a, second->GetWChars(), size_t(first->GetLength()) * sizeof(WChar)) == 0);
    Check(normalised == second->GetChars());
}

// The same bytes read as UTF-16 units: paired surrogates survive, unpaired
// ones come back as U+FFFD, everything else unchanged.
void FromUtf16(const uint8_t* data, size_t size)
{
    const int32_t count = int32_t(size / 2);
    std::u16string units(size_t(count), u'\0');
    for (int32_t i = 0; i < count; ++i)
        units[size_t(i)] = char16_t(data[2 * i] | data[2 * i + 1] << 8);
    RObject<CString> s(new CString(reinterpret_cast<const WChar*>(units.data()), count));
    const char* utf8 = s->GetChars();
    const int32_t bytes = int32_t(std::strlen(utf8));
    RObject<CString> back(new CString(utf8, bytes));
    // Embedded NUL units cut the terminated UTF-8 form; compare what is left.
    int32_t compared = 0;
    while (compared < count && units[size_t(compared)] != 0)
        ++compared;
    Check(back->GetLength() == compared);
    const WChar* round = back->GetWChars();
    for (int32_t i = 0; i < compared; ++i) {
        const uint16_t unit = units[size_t(i)];
        const bool paired = (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < compared &&
                             units[size_t(i + 1)] >= 0xDC00 && units[size_t(i + 1)] <= 0xDFFF);
        if (paired) {
            Check(uint16_t(round[i]) == unit && uint16_t(round[i + 1]) == units[size_t(i + 1)]);
            ++i;
        } else if (IsSurrogate(unit)) {
            Check(uint16_t(round[i]) == 0xFFFD);
        } else {
            Check(uint16_t(round[i]) == unit);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FromUtf8(data, size);
    FromUtf16(data, size);
    return 0;
}
