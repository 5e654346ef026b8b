#include <vek/io/CDataUri.h>

#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>
#include <vek/core/CharClass.h>
#include <vek/core/Log.h>
#include <vek/core/PercentCoding.h>

#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <string>

namespace Quorvex::Vek {

namespace {

constexpr const char* kDefaultMediaType = "text/plain;charset=US-ASCII";

bool StartsWithIgnoreCase(const char* text, size_t length, const char* prefix)
{
    const size_t n = std::strlen(prefix);
    return length >= n && CharClass::EqualsIgnoreAsciiCase(text, prefix, int32_t(n));
}

int Base64Value(char c)
{
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+' || c == '-')
        return 62;
    if (c == '/' || c == '_')
        return 63;
    return -1;
}

// The parts of a data URI: [header, comma) and (comma, end).
struct Parsed {
    std::string mediaType;
    bool base64 = false;
    const char* data = nullptr;
    size_t dataLength = 0;
};

bool ParseUnguarded(const char* text, Parsed& parsed)
{
    if (!text)
        return false;
    const size_t length = std::strlen(text);
    if (!StartsWithIgnoreCase(text, length, "data:"))
        return false;
    const char* comma = std::strchr(text + 5, ',');
    if (!comma)
        return false;
    std::string header(text + 5, size_t(comma - text - 5));
    constexpr const char* kBase64 = ";base64";
    const size_t suffix = std::strlen(kBase64);
    if (header.size() >= suffix &&
        StartsWithIgnoreCase(header.c_str() + header.size() - suffix, suffix, kBase64)) {
        parsed.base64 = true;
        header.resize(header.size() - suffix);
    }
    if (header.empty())
        parsed.mediaType = kDefaultMediaType;
    else if (header[0] == ';')
        parsed.mediaType = "text/plain" + header;
    else
        parsed.mediaType = header;
    parsed.data = comma + 1;
    parsed.dataLength = length - size_t(comma + 1 - text);
    return true;
}

// Parse without exceptions: the header is copied into a std::string, and
// a data URI is host input of any size.
bool Parse(const char* text, Parsed& parsed)
{
    try {
        return ParseUnguarded(text, parsed);
    } catch (const std::exception& error) {
        Log(LogLevel::Error, "CDataUri::Parse: %s\n", error.what());
        return false;
    }
}

// Percent-decodes; a '%' without two hexadecimal digits fails.
bool PercentDecode(const char* text, size_t length, std::string& out)
{
    out.resize(length);
    const int64_t n = PercentCoding::Decode(text, length, out.data(), PercentCoding::Malformed::Fail);
    if (n < 0)
        return false;
    out.resize(size_t(n));
    return true;
}

// Standard or URL-safe alphabet; white space is skipped, padding optional,
// anything after padding other than padding or white space fails.
bool Base64Decode(const std::string& text, std::string& out)
{
    out.clear();
    uint32_t bits = 0;
    int count = 0;
    bool padded = false;
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n')
            continue;
        if (c == '=') {
            padded = true;
            continue;
        }
        const int value = Base64Value(c);
        if (value < 0 || padded)
            return false;
        bits = (bits << 6) | uint32_t(value);
        if (++count == 4) {
            out += char(bits >> 16);
            out += char(bits >> 8);
            out += char(bits);
            bits = 0;
            count = 0;
        }
    }
    if (count == 1)
        return false;
    if (count == 2)
        out += char(bits >> 4);
    if (count == 3) {
        out += char(bits >> 10);
        out += char(bits >> 2);
    }
    return true;
}

bool Decode(const Parsed& parsed, std::string& bytes)
{
    std::string text;
    if (!PercentDecode(parsed.data, parsed.dataLength, text))
        return false;
    if (!parsed.base64) {
        bytes.swap(text);
        return true;
    }
    return Base64Decode(text, bytes);
}

} // namespace

CDataUri::CDataUri(CString* text) : CUri(text, Type) {}

CDataUri::~CDataUri() = default;

CDataUri* CDataUri::CreateWithDataUri(const char* text)
{
    Parsed parsed;
    std::string bytes;
    if (!Parse(text, parsed)) {
        Log(LogLevel::Warning, "CDataUri::CreateWithDataUri: not a data URI\n");
        return nullptr;
    }
    try {
        if (!Decode(parsed, bytes)) {
            Log(LogLevel::Warning, "CDataUri::CreateWithDataUri: data of %zu characters cannot be decoded\n",
                parsed.dataLength);
            return nullptr;
        }
    } catch (const std::exception& error) {
        Log(LogLevel::Error, "CDataUri::CreateWithDataUri: %s\n", error.what());
        return nullptr;
    }
    if (bytes.size() > size_t(std::numeric_limits<int32_t>::max())) {
        Log(LogLevel::Error, "CDataUri::CreateWithDataUri: %zu bytes of data are over the limit\n", bytes.size());
        return nullptr;
    }
    CString* stored = CString::Create(text);
    if (!stored)
        return nullptr;
    CDataUri* uri = new (fallible) CDataUri(stored);
    if (!uri)
        stored->Release();
    return uri;
}

CDataUri* CDataUri::CreateWithDataUri(CString* text)
{
    return text ? CreateWithDataUri(text->GetChars()) : nullptr;
}

CString* CDataUri::GetMediaType()
{
    Parsed parsed;
    if (!m_url || !Parse(m_url->GetChars(), parsed))
        return nullptr;
    return CString::Create(parsed.mediaType.c_str());
}

CByteArray* CDataUri::GetData()
{
    Parsed parsed;
    std::string bytes;
    try {
        if (!m_url || !Parse(m_url->GetChars(), parsed) || !Decode(parsed, bytes))
            return nullptr;
    } catch (const std::exception& error) {
        Log(LogLevel::Error, "CDataUri::GetData: %s\n", error.what());
        return nullptr;
    }
    if (bytes.size() > size_t(std::numeric_limits<int32_t>::max())) {
        Log(LogLevel::Error, "CDataUri::GetData: %zu bytes of data are over the limit\n", bytes.size());
        return nullptr;
    }
    return new (fallible)
        CByteArray(reinterpret_cast<const unsigned char*>(bytes.data()), int32_t(bytes.size()));
}

bool CDataUri::IsMediaType(const char* mediaType)
{
    Parsed parsed;
    if (!mediaType || !m_url || !Parse(m_url->GetChars(), parsed))
        return false;
    // Compared in place: the type is the media type up to its first ';'.
    const size_t found = parsed.mediaType.find(';');
    const size_t typeLength = found == std::string::npos ? parsed.mediaType.size() : found;
    return typeLength == std::strlen(mediaType) &&
           StartsWithIgnoreCase(parsed.mediaType.c_str(), typeLength, mediaType);
}

} // namespace Quorvex::Vek
