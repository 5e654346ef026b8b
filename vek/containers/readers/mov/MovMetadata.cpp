#include <vek/containers/readers/mov/MovMetadata.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>

#include <vek/core/Allocation.h>
#include <vek/core/CollectionStorage.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/IProperties.h>
#include <vek/platform/TextCodec.h>

namespace Quorvex::Vek {

const char* const MovUnknownAtomPrefix = "mov.udta.";

namespace {

// Keys are built in a fixed buffer: a longer name is refused, not allocated.
constexpr size_t KeyCapacity = 512;
// Text whose conversion could not be sized in 32 bits is refused.
constexpr size_t MaxTextBytes = size_t(INT32_MAX) / 4;

// A QuickTime text atom: '©' (0xA9) and three letters.
constexpr uint32_t Apple(const char (&letters)[4])
{
    return 0xA9u << 24 | uint32_t(uint8_t(letters[0])) << 16 | uint32_t(uint8_t(letters[1])) << 8 |
           uint32_t(uint8_t(letters[2]));
}

struct AtomKey {
    uint32_t type;
    const char* key;
};

const AtomKey AtomKeys[] = {
    {Apple("nam"), ContainerProperty::MovTitle},       {Apple("ART"), ContainerProperty::MovArtist},
    {Apple("alb"), ContainerProperty::MovAlbum},       {Apple("aut"), ContainerProperty::MovAuthor},
    {Apple("cmt"), ContainerProperty::MovComment},     {Apple("cpy"), ContainerProperty::MovCopyright},
    {Four("cprt"), ContainerProperty::MovCopyright}, {Apple("day"), ContainerProperty::MovCreationDate},
    {Apple("des"), ContainerProperty::MovDescription}, {Four("desc"), ContainerProperty::MovDescription},
    {Apple("dir"), ContainerProperty::MovDirector},    {Apple("gen"), ContainerProperty::MovGenre},
    {Apple("inf"), ContainerProperty::MovInformation}, {Apple("key"), ContainerProperty::MovKeywords},
    {Four("keyw"), ContainerProperty::MovKeywords}, {Apple("xyz"), ContainerProperty::MovLocation},
    {Apple("prd"), ContainerProperty::MovProducer},    {Apple("pub"), ContainerProperty::MovPublisher},
    {Apple("swr"), ContainerProperty::MovSoftware},    {Apple("too"), ContainerProperty::MovSoftware},
    {Four("covr"), ContainerProperty::MovArtwork},
};

// 3GPP asset atoms of 'udta': a full box, a language and one terminated
// string. (In an item list 'gnre' is a genre number, not text.)
const AtomKey AssetAtoms[] = {
    {Four("titl"), ContainerProperty::MovTitle},       {Four("auth"), ContainerProperty::MovAuthor},
    {Four("perf"), ContainerProperty::MovArtist},      {Four("dscp"), ContainerProperty::MovDescription},
    {Four("gnre"), ContainerProperty::MovGenre},       {Four("cprt"), ContainerProperty::MovCopyright},
};

// iTunes items whose implicit (type 0) value is a big-endian counter.
const uint32_t CounterItems[] = {Four("cpil"), Four("pgap"), Four("pcst"), Four("tmpo"),
                                 Four("gnre"), Four("rtng"), Four("stik"), Four("hdvd"),
                                 Four("tvsn"), Four("tves")};

// Unicode code points of the Mac-Roman bytes 0x80..0xFF.
const uint16_t MacRomanHigh[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

enum class Encoding { Utf8, Utf16BigEndian, MacRoman };

// The iTunes 'data' box: a type indicator, a locale and the value.
struct DataValue {
    uint32_t typeIndicator = 0;
    const uint8_t* bytes = nullptr;
    size_t size = 0;
};

enum : uint32_t {
    TypeImplicit = 0,
    TypeUtf8 = 1,
    TypeUtf16 = 2,
    TypeUtf8Sort = 4,
    TypeUtf16Sort = 5,
    TypeSigned = 21,
    TypeUnsigned = 22,
    TypeFloat32 = 23,
    TypeFloat64 = 24,
};

template <size_t N>
bool Contains(const uint32_t (&list)[N], uint32_t type)
{
    for (uint32_t entry : list)
        if (entry == type)
            return true;
    return false;
}

template <size_t N>
const char* KeyOf(const AtomKey (&table)[N], uint32_t type)
{
    for (const AtomKey& entry : table)
        if (entry.type == type)
            return entry.key;
    return nullptr;
}

const char* KnownKey(uint32_t type)
{
    return KeyOf(AtomKeys, type);
}

// The prefix and the four characters read as Latin-1, printable ones kept.
void UnknownAtomKey(uint32_t type, char (&key)[KeyCapacity])
{
    size_t length = std::strlen(MovUnknownAtomPrefix);
    std::memcpy(key, MovUnknownAtomPrefix, length);
    for (int shift = 24; shift >= 0; shift -= 8) {
        const uint8_t c = uint8_t(type >> shift);
        if (c >= 0x20 && c < 0x7F && c != '%') {
            key[length++] = char(c);
        } else if (c >= 0xA0) {
            key[length++] = char(0xC0 | c >> 6);
            key[length++] = char(0x80 | (c & 0x3F));
        } else {
            length += size_t(std::snprintf(key + length, KeyCapacity - length, "%%%02X", c));
        }
    }
    key[length] = '\0';
}

size_t EncodeUtf8(uint32_t codePoint, uint8_t* out)
{
    if (codePoint < 0x80) {
        out[0] = uint8_t(codePoint);
        return 1;
    }
    if (codePoint < 0x800) {
        out[0] = uint8_t(0xC0 | codePoint >> 6);
        out[1] = uint8_t(0x80 | (codePoint & 0x3F));
        return 2;
    }
    out[0] = uint8_t(0xE0 | codePoint >> 12);
    out[1] = uint8_t(0x80 | (codePoint >> 6 & 0x3F));
    out[2] = uint8_t(0x80 | (codePoint & 0x3F));
    return 3;
}

// Leading digits of a date, as a user reads the year off it.
bool LeadingYear(const uint8_t* text, size_t size)
{
    if (size < 4)
        return false;
    for (size_t i = 0; i < 4; ++i)
        if (text[i] < '0' || text[i] > '9')
            return false;
    return size == 4 || text[4] < '0' || text[4] > '9';
}

// Stores bytes under a key. A key or value the bag refuses (ill-formed
// key text) is skipped with a log line; only a memory failure is passed up.
int Store(IProperties* bag, const char* key, const uint8_t* bytes, size_t size, uint32_t atom)
{
    if (size > size_t(INT32_MAX)) {
        Log(LogLevel::Warning, "MovMetadata: '%s' value of %zu bytes is too long; skipped\n", FourCCText(atom).c_str(),
            size);
        return RESULT_OK;
    }
    int result = bag->SetProperty(key, int32_t(size), bytes);
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    if (result < 0) {
        Log(LogLevel::Warning, "MovMetadata: '%s' not stored (key refused, %d); skipped\n", FourCCText(atom).c_str(),
            result);
        return RESULT_OK;
    }
    if (std::strcmp(key, ContainerProperty::MovCreationDate) == 0 && LeadingYear(bytes, size))
        result = bag->SetProperty(ContainerProperty::MovYear, 4, bytes);
    return result == RESULT_OUT_OF_MEMORY ? result : RESULT_OK;
}

int StoreUnits(IProperties* bag, const char* key, const Platform::TextUnit16* units, int32_t count, uint32_t atom)
{
    const int32_t length = Platform::Utf16ToUtf8(units, count, nullptr, 0);
    if (length < 0) {
        Log(LogLevel::Warning, "MovMetadata: '%s' text of %d units is too long; skipped\n", FourCCText(atom).c_str(),
            count);
        return RESULT_OK;
    }
    std::unique_ptr<char[]> text(new (fallible) char[size_t(length) + 1]);
    if (!text)
        return RESULT_OUT_OF_MEMORY;
    Platform::Utf16ToUtf8(units, count, text.get(), length);
    return Store(bag, key, reinterpret_cast<const uint8_t*>(text.get()), size_t(length), atom);
}

size_t Utf16Units(const uint8_t* text, size_t size, bool bigEndian, Platform::TextUnit16* out)
{
    size_t count = 0;
    for (size_t at = 0; size - at >= 2; at += 2) {
        const uint16_t unit = bigEndian ? uint16_t(text[at] << 8 | text[at + 1]) : uint16_t(text[at + 1] << 8 | text[at]);
        if (unit == 0)
            break;
        if (out)
            out[count] = Platform::TextUnit16(unit);
        ++count;
    }
    return count;
}

int StoreUtf16(IProperties* bag, const char* key, const uint8_t* text, size_t size, uint32_t atom)
{
    bool bigEndian = true;
    if (size >= 2 && ((text[0] == 0xFE && text[1] == 0xFF) || (text[0] == 0xFF && text[1] == 0xFE))) {
        bigEndian = text[0] == 0xFE;
        text += 2;
        size -= 2;
    }
    const size_t count = Utf16Units(text, size, bigEndian, nullptr);
    std::unique_ptr<Platform::TextUnit16[]> units(new (fallible) Platform::TextUnit16[count + 1]);
    if (!units)
        return RESULT_OUT_OF_MEMORY;
    Utf16Units(text, size, bigEndian, units.get());
    return StoreUnits(bag, key, units.get(), int32_t(count), atom);
}

int StoreUtf8(IProperties* bag, const char* key, const uint8_t* text, size_t size, uint32_t atom)
{
    const void* zero = std::memchr(text, 0, size);
    if (zero)
        size = size_t(static_cast<const uint8_t*>(zero) - text);
    const char* chars = reinterpret_cast<const char*>(text);
    if (Platform::IsWellFormedUtf8(chars, int32_t(size)))
        return Store(bag, key, text, size, atom);
    Log(LogLevel::Warning, "MovMetadata: '%s' text is not well-formed UTF-8; stored with replacement characters\n",
        FourCCText(atom).c_str());
    const int32_t count = Platform::Utf8ToUtf16(chars, int32_t(size), nullptr, 0);
    std::unique_ptr<Platform::TextUnit16[]> units(new (fallible) Platform::TextUnit16[size_t(count) + 1]);
    if (!units)
        return RESULT_OUT_OF_MEMORY;
    Platform::Utf8ToUtf16(chars, int32_t(size), units.get(), count);
    return StoreUnits(bag, key, units.get(), count, atom);
}

int StoreMacRoman(IProperties* bag, const char* key, const uint8_t* text, size_t size, uint32_t atom)
{
    const void* zero = std::memchr(text, 0, size);
    if (zero)
        size = size_t(static_cast<const uint8_t*>(zero) - text);
    std::unique_ptr<uint8_t[]> out(new (fallible) uint8_t[size * 3 + 1]);
    if (!out)
        return RESULT_OUT_OF_MEMORY;
    size_t length = 0;
    for (size_t i = 0; i < size; ++i)
        length += EncodeUtf8(text[i] < 0x80 ? text[i] : MacRomanHigh[text[i] - 0x80], out.get() + length);
    return Store(bag, key, out.get(), length, atom);
}

int StoreText(IProperties* bag, const char* key, const uint8_t* text, size_t size, Encoding encoding, uint32_t atom)
{
    if (size > MaxTextBytes) {
        Log(LogLevel::Warning, "MovMetadata: '%s' text of %zu bytes is too long; skipped\n", FourCCText(atom).c_str(),
            size);
        return RESULT_OK;
    }
    switch (encoding) {
    case Encoding::Utf8:
        return StoreUtf8(bag, key, text, size, atom);
    case Encoding::Utf16BigEndian:
        return StoreUtf16(bag, key, text, size, atom);
    case Encoding::MacRoman:
        return StoreMacRoman(bag, key, text, size, atom);
    }
    return RESULT_OK;
}

int StoreDecimal(IProperties* bag, const char* key, const char* text, uint32_t atom)
{
    return Store(bag, key, reinterpret_cast<const uint8_t*>(text), std::strlen(text), atom);
}

uint64_t LoadUnsigned(const uint8_t* bytes, size_t size)
{
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | bytes[i];
    return value;
}

bool IsIntegerSize(size_t size)
{
    return size >= 1 && size <= 8 && size != 5 && size != 6 && size != 7;
}

int StoreInteger(IProperties* bag, const char* key, const DataValue& value, bool isSigned, uint32_t atom)
{
    const uint64_t bits = LoadUnsigned(value.bytes, value.size);
    char text[32];
    if (isSigned) {
        const unsigned shift = unsigned(64 - 8 * value.size);
        // Sign-extend from the value's width.
        const int64_t signedValue = shift == 0 ? int64_t(bits) : int64_t(bits << shift) >> shift;
        std::snprintf(text, sizeof text, "%" PRId64, signedValue);
    } else {
        std::snprintf(text, sizeof text, "%" PRIu64, bits);
    }
    return StoreDecimal(bag, key, text, atom);
}

int StoreFloat(IProperties* bag, const char* key, const DataValue& value, uint32_t atom)
{
    char text[40];
    if (value.size == 4) {
        const uint32_t bits = BigEndian::Load32(value.bytes);
        float number;
        std::memcpy(&number, &bits, 4);
        std::snprintf(text, sizeof text, "%.9g", double(number));
    } else {
        const uint64_t bits = BigEndian::Load64(value.bytes);
        double number;
        std::memcpy(&number, &bits, 8);
        std::snprintf(text, sizeof text, "%.17g", number);
    }
    return StoreDecimal(bag, key, text, atom);
}

// 'trkn' and 'disk': reserved 16, number 16, total 16 (and 16 reserved).
int StoreNumberOfTotal(IProperties* bag, const char* key, const DataValue& value, uint32_t atom)
{
    const unsigned number = BigEndian::Load16(value.bytes + 2);
    const unsigned total = BigEndian::Load16(value.bytes + 4);
    char text[16];
    if (total)
        std::snprintf(text, sizeof text, "%u/%u", number, total);
    else
        std::snprintf(text, sizeof text, "%u", number);
    return StoreDecimal(bag, key, text, atom);
}

int StoreImplicit(IProperties* bag, const char* key, const DataValue& value, uint32_t atom)
{
    if ((atom == Four("trkn") || atom == Four("disk")) && value.size >= 6)
        return StoreNumberOfTotal(bag, key, value, atom);
    if (Contains(CounterItems, atom) && IsIntegerSize(value.size))
        return StoreInteger(bag, key, value, false, atom);
    return Store(bag, key, value.bytes, value.size, atom);
}

int StoreValue(IProperties* bag, const char* key, const DataValue& value, uint32_t atom)
{
    // A non-zero set byte means a type table other than the well-known one.
    if (value.typeIndicator >> 24)
        return Store(bag, key, value.bytes, value.size, atom);
    switch (value.typeIndicator) {
    case TypeImplicit:
        return StoreImplicit(bag, key, value, atom);
    case TypeUtf8:
    case TypeUtf8Sort:
        return StoreText(bag, key, value.bytes, value.size, Encoding::Utf8, atom);
    case TypeUtf16:
    case TypeUtf16Sort:
        return StoreText(bag, key, value.bytes, value.size, Encoding::Utf16BigEndian, atom);
    case TypeSigned:
    case TypeUnsigned:
        if (IsIntegerSize(value.size))
            return StoreInteger(bag, key, value, value.typeIndicator == TypeSigned, atom);
        break;
    case TypeFloat32:
    case TypeFloat64:
        if (value.size == (value.typeIndicator == TypeFloat32 ? 4u : 8u))
            return StoreFloat(bag, key, value, atom);
        break;
    default:
        break;
    }
    // Pictures (JPEG 13, PNG 14, BMP 27), binary and any other type.
    return Store(bag, key, value.bytes, value.size, atom);
}

int ReadDataBox(const MovBox& data, uint32_t atom, DataValue& value)
{
    MovFieldReader fields(data);
    value.typeIndicator = fields.Read32();
    fields.Skip(4); // locale
    if (fields.Failed()) {
        Log(LogLevel::Warning, "MovMetadata: 'data' of '%s' has %zu bytes, fewer than its 8-byte header; skipped\n",
            FourCCText(atom).c_str(), data.size);
        return RESULT_FORMAT_ERROR;
    }
    value.bytes = fields.Here();
    value.size = fields.Remaining();
    return RESULT_OK;
}

// The first 'data' child of an item: 0, 1 when there is none, or a code.
int FindFirstData(const MovBox& item, uint32_t atom, DataValue& value)
{
    MovBoxIterator children(item);
    MovBox data;
    const int result = children.Find(Four("data"), data);
    if (result != RESULT_OK) {
        Log(LogLevel::Warning, "MovMetadata: item '%s' of %zu bytes holds no readable 'data'; skipped\n",
            FourCCText(atom).c_str(), item.size);
        return result;
    }
    return ReadDataBox(data, atom, value);
}

// The text of a 'mean' or 'name' box (a full box) as a key part.
bool FreeFormPart(const MovBox& box, const char*& text, size_t& length)
{
    if (box.size < 4)
        return false;
    text = reinterpret_cast<const char*>(box.payload + 4);
    length = box.size - 4;
    return std::memchr(text, 0, length) == nullptr;
}

// '----': the key is the item's domain ('mean') and name joined by a dot.
bool FreeFormKey(const MovBox& item, char (&key)[KeyCapacity])
{
    const char* mean = nullptr;
    const char* name = nullptr;
    size_t meanLength = 0, nameLength = 0;
    MovBoxIterator children(item);
    MovBox child;
    while (children.Next(child) == RESULT_OK) {
        if (child.type == Four("mean") && !FreeFormPart(child, mean, meanLength))
            return false;
        if (child.type == Four("name") && !FreeFormPart(child, name, nameLength))
            return false;
    }
    if (!name || !nameLength)
        return false;
    const char* domain = mean ? mean : "mov.udta.----";
    const size_t domainLength = mean ? meanLength : std::strlen(domain);
    if (domainLength >= KeyCapacity || nameLength >= KeyCapacity - domainLength - 1)
        return false;
    std::memcpy(key, domain, domainLength);
    key[domainLength] = '.';
    std::memcpy(key + domainLength + 1, name, nameLength);
    key[domainLength + 1 + nameLength] = '\0';
    return true;
}

// An iTunes item (or a data-form atom of 'udta') keyed by its four-cc.
int ReadListItem(const MovBox& item, IProperties* bag)
{
    char key[KeyCapacity];
    const char* known = KnownKey(item.type);
    if (item.type == Four("----")) {
        if (!FreeFormKey(item, key)) {
            Log(LogLevel::Warning, "MovMetadata: free-form item of %zu bytes has no usable 'mean'/'name'; skipped\n",
                item.size);
            return RESULT_OK;
        }
    } else if (known) {
        std::strcpy(key, known);
    } else {
        UnknownAtomKey(item.type, key);
    }
    DataValue value;
    if (FindFirstData(item, item.type, value) != RESULT_OK)
        return RESULT_OK;
    return StoreValue(bag, key, value, item.type);
}

// A QuickTime text atom: (size, language, text) records; the first is read.
int ReadTextAtom(const MovBox& atom, IProperties* bag)
{
    MovFieldReader fields(atom);
    const uint16_t size = fields.Read16();
    const uint16_t language = fields.Read16();
    const uint8_t* text = fields.Take(size);
    if (fields.Failed()) {
        Log(LogLevel::Warning, "MovMetadata: text atom '%s' of %zu bytes holds a %u-byte record; skipped\n",
            FourCCText(atom.type).c_str(), atom.size, unsigned(size));
        return RESULT_OK;
    }
    Encoding encoding = Encoding::Utf8;
    if (language < 0x400)
        encoding = Encoding::MacRoman;
    else if (size >= 2 && ((text[0] == 0xFE && text[1] == 0xFF) || (text[0] == 0xFF && text[1] == 0xFE)))
        encoding = Encoding::Utf16BigEndian;
    char key[KeyCapacity];
    const char* known = KnownKey(atom.type);
    if (known)
        std::strcpy(key, known);
    else
        UnknownAtomKey(atom.type, key);
    return StoreText(bag, key, text, size, encoding, atom.type);
}

// A 3GPP asset: version and flags, pad bit and language, terminated string.
int ReadAsset(const MovBox& atom, IProperties* bag)
{
    MovFieldReader fields(atom);
    fields.Skip(6);
    if (fields.Failed()) {
        Log(LogLevel::Warning, "MovMetadata: asset '%s' of %zu bytes is shorter than its 6-byte header; skipped\n",
            FourCCText(atom.type).c_str(), atom.size);
        return RESULT_OK;
    }
    const uint8_t* text = fields.Here();
    const size_t size = fields.Remaining();
    const bool utf16 = size >= 2 && text[0] == 0xFE && text[1] == 0xFF;
    return StoreText(bag, KeyOf(AssetAtoms, atom.type), text, size, utf16 ? Encoding::Utf16BigEndian : Encoding::Utf8,
                     atom.type);
}

int StoreUnknownAtom(const MovBox& atom, IProperties* bag)
{
    char key[KeyCapacity];
    UnknownAtomKey(atom.type, key);
    return Store(bag, key, atom.payload, atom.size, atom.type);
}

bool IsDataForm(const MovBox& atom)
{
    return atom.size >= 8 && BigEndian::Load32(atom.payload + 4) == Four("data");
}

int ReadUserDataAtom(const MovBox& atom, IProperties* bag)
{
    if (atom.type == Four("meta"))
        return ReadMetadata(atom, bag);
    if (atom.type == Four("free") || atom.type == Four("skip"))
        return RESULT_OK;
    if (IsDataForm(atom))
        return ReadListItem(atom, bag);
    if (atom.type >> 24 == 0xA9)
        return ReadTextAtom(atom, bag);
    if (KeyOf(AssetAtoms, atom.type))
        return ReadAsset(atom, bag);
    return StoreUnknownAtom(atom, bag);
}

// The names of 'keys': spans into the box, in order.
struct KeyName {
    const uint8_t* text;
    size_t length;
    uint32_t keyNamespace;
};

int ReadKeys(const MovBox& keys, Detail::GrowBuffer<KeyName>& names)
{
    MovFieldReader fields(keys);
    fields.Skip(4); // version and flags
    const uint32_t count = fields.Read32();
    if (fields.Failed()) {
        Log(LogLevel::Warning, "MovMetadata: 'keys' of %zu bytes is shorter than its header; ignored\n", keys.size);
        return RESULT_OK;
    }
    // Each entry takes at least 8 bytes: the count cannot reserve more.
    size_t fit = fields.Remaining() / 8;
    if (fit > size_t(Detail::GrowBuffer<KeyName>::MaxCount))
        fit = size_t(Detail::GrowBuffer<KeyName>::MaxCount);
    if (!names.Reserve(int32_t(count < fit ? count : fit)))
        return RESULT_OUT_OF_MEMORY;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t size = fields.Read32();
        const uint32_t keyNamespace = fields.Read32();
        const uint8_t* text = size >= 8 ? fields.Take(size - 8) : nullptr;
        if (fields.Failed() || !text) {
            Log(LogLevel::Warning,
                "MovMetadata: 'keys' entry %u of %u has size %u, but the box does not hold it; later keys ignored\n",
                i + 1, count, size);
            break;
        }
        if (!names.Insert(names.Count(), KeyName{text, size - 8u, keyNamespace}))
            return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

// A QuickTime metadata item: its type is a 1-based index into 'keys'.
int ReadKeyedItem(const MovBox& item, const Detail::GrowBuffer<KeyName>& names, IProperties* bag)
{
    const uint32_t index = item.type;
    if (index == 0 || index > uint32_t(names.Count())) {
        Log(LogLevel::Warning, "MovMetadata: 'ilst' item refers to key %u, but 'keys' has %d; skipped\n", index,
            names.Count());
        return RESULT_OK;
    }
    const KeyName& name = names[int32_t(index - 1)];
    if (name.keyNamespace != Four("mdta") || name.length == 0 || name.length >= KeyCapacity ||
        std::memchr(name.text, 0, name.length)) {
        Log(LogLevel::Warning, "MovMetadata: key %u ('%s' name of %zu bytes) cannot name a property; skipped\n", index,
            FourCCText(name.keyNamespace).c_str(), name.length);
        return RESULT_OK;
    }
    char key[KeyCapacity];
    std::memcpy(key, name.text, name.length);
    key[name.length] = '\0';
    DataValue value;
    if (FindFirstData(item, item.type, value) != RESULT_OK)
        return RESULT_OK;
    return StoreValue(bag, key, value, item.type);
}

int ReadItemList(const MovBox& ilst, const Detail::GrowBuffer<KeyName>* names, IProperties* bag)
{
    MovBoxIterator items(ilst);
    MovBox item;
    int result;
    while ((result = items.Next(item)) == RESULT_OK) {
        const int stored = names ? ReadKeyedItem(item, *names, bag) : ReadListItem(item, bag);
        if (stored < 0)
            return stored;
    }
    if (result < 0)
        Log(LogLevel::Warning, "MovMetadata: 'ilst' walk stopped at a broken item; later items ignored\n");
    return RESULT_OK;
}

// The children of a 'meta': after a version and flags in the ISO form, at
// once in QuickTime's.
MovBoxIterator MetaChildren(const MovBox& meta)
{
    const size_t skip = meta.size >= 4 && BigEndian::Load32(meta.payload) == 0 ? 4 : 0;
    return MovBoxIterator(meta.payload + skip, meta.size - skip, meta.PayloadOffset() + int64_t(skip), meta.type);
}

uint32_t HandlerType(const MovBox& hdlr)
{
    MovFieldReader fields(hdlr);
    fields.Skip(8); // version, flags, pre-defined
    const uint32_t type = fields.Read32();
    return fields.Failed() ? 0 : type;
}

} // namespace

int ReadMetadata(const MovBox& meta, IProperties* container)
{
    if (!container)
        return RESULT_ARGUMENT_NULL;
    uint32_t handler = 0;
    MovBox keys, ilst, child;
    bool hasKeys = false, hasList = false;
    MovBoxIterator children = MetaChildren(meta);
    int result;
    while ((result = children.Next(child)) == RESULT_OK) {
        if (child.type == Four("hdlr") && !handler)
            handler = HandlerType(child);
        else if (child.type == Four("keys") && !hasKeys)
            hasKeys = true, keys = child;
        else if (child.type == Four("ilst") && !hasList)
            hasList = true, ilst = child;
    }
    if (result < 0)
        Log(LogLevel::Warning, "MovMetadata: 'meta' walk stopped at a broken box; reading what came before\n");
    if (handler == 0)
        handler = hasKeys ? Four("mdta") : Four("mdir");
    if (handler != Four("mdta") && handler != Four("mdir")) {
        Log(LogLevel::Info, "MovMetadata: 'meta' with handler '%s' is not read\n", FourCCText(handler).c_str());
        return RESULT_OK;
    }
    if (!hasList)
        return RESULT_OK;
    if (handler == Four("mdir"))
        return ReadItemList(ilst, nullptr, container);
    Detail::GrowBuffer<KeyName> names;
    if (hasKeys && (result = ReadKeys(keys, names)) < 0)
        return result;
    return ReadItemList(ilst, &names, container);
}

int ReadUserData(const MovBox& udta, IProperties* container)
{
    if (!container)
        return RESULT_ARGUMENT_NULL;
    MovBoxIterator children(udta);
    MovBox atom;
    int result;
    while ((result = children.Next(atom)) == RESULT_OK) {
        const int stored = ReadUserDataAtom(atom, container);
        if (stored < 0)
            return stored;
    }
    if (result < 0)
        Log(LogLevel::Warning, "MovMetadata: 'udta' walk stopped at a broken atom; later atoms ignored\n");
    return RESULT_OK;
}

} // namespace Quorvex::Vek
