// URL services on uriparser. uriparser follows RFC 3986 strictly, while the
// library's URLs come from hosts and files and may carry spaces or stray
// '%' signs that the Windows services tolerate; such bytes are made
// harmless before parsing (see Sanitize) and the components are then cut
// from the caller's own text, so what comes back is what was given.
#include <vek/platform/UrlServices.h>

#include <vek/core/CharClass.h>
#include <vek/core/Log.h>
#include <vek/core/PercentCoding.h>

#include <uriparser/Uri.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

namespace Quorvex::Vek::Platform {

namespace {

bool EqualsIgnoreCase(const char* text, size_t length, const char* lowered)
{
    if (std::strlen(lowered) != length)
        return false;
    for (size_t i = 0; i < length; ++i)
        if (CharClass::ToLowerAscii(text[i]) != lowered[i])
            return false;
    return true;
}

bool IsSchemeChar(char c)
{
    return CharClass::IsAsciiLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

// Length of the scheme that starts `text` and is followed by ':', else 0.
size_t SchemeLength(const char* text)
{
    if (!CharClass::IsAsciiLetter(text[0]))
        return 0;
    size_t n = 1;
    while (IsSchemeChar(text[n]))
        ++n;
    return text[n] == ':' ? n : 0;
}

bool HasEscapeAt(const char* text, size_t i)
{
    // The text is terminated: look no further than three bytes from `i`.
    size_t end = i;
    while (end < i + 3 && text[end])
        ++end;
    return PercentCoding::IsEscapeAt(text, end, i);
}

// Characters RFC 3986 allows outside the scheme, apart from '%' and '#'.
bool IsUriChar(char c)
{
    if (CharClass::IsAsciiLetter(c) || (c >= '0' && c <= '9'))
        return true;
    return std::strchr("-._~!$&'()*+,;=:@/?[]", c) != nullptr && c != 0;
}

void AppendEscape(std::string& out, char c)
{
    char escape[3];
    PercentCoding::Encode(uint8_t(c), escape);
    out.append(escape, 3);
}

// Replaces every byte uriparser would refuse with `a` (so offsets stay
// those of the original text) or, with `encode`, with its %XX escape.
std::string Sanitize(const char* text, size_t schemeLength, bool encode)
{
    std::string out(text, schemeLength);
    bool inFragment = false;
    for (size_t i = schemeLength; text[i]; ++i) {
        const char c = text[i];
        bool keep = IsUriChar(c) || HasEscapeAt(text, i);
        if (c == '#' && !inFragment) {
            inFragment = true;
            keep = true;
        }
        if (keep)
            out += c;
        else if (encode)
            AppendEscape(out, c);
        else
            out += 'a';
    }
    return out;
}

std::string Unescape(const std::string& text)
{
    std::string out(text.size(), '\0');
    const int64_t n = PercentCoding::Decode(text.data(), text.size(), out.data(), PercentCoding::Malformed::Keep);
    out.resize(size_t(n < 0 ? 0 : n));
    // An escaped NUL ends the text, as it does for a C string.
    return out.substr(0, std::strlen(out.c_str()));
}

// RFC 3986 section 5.2.4.
std::string RemoveDotSegments(std::string input)
{
    std::string output;
    while (!input.empty()) {
        if (input.rfind("../", 0) == 0)
            input.erase(0, 3);
        else if (input.rfind("./", 0) == 0)
            input.erase(0, 2);
        else if (input.rfind("/./", 0) == 0)
            input.erase(0, 2);
        else if (input == "/.")
            input = "/";
        else if (input.rfind("/../", 0) == 0 || input == "/..") {
            input = input.size() == 3 ? "/" : input.substr(3);
            const size_t cut = output.rfind('/');
            output.erase(cut == std::string::npos ? 0 : cut);
        } else if (input == "." || input == "..")
            input.clear();
        else {
            const size_t next = input.find('/', input[0] == '/' ? 1 : 0);
            output += input.substr(0, next);
            input.erase(0, next == std::string::npos ? input.size() : next);
        }
    }
    return output;
}

bool Put(const std::string& text, char* buffer, uint32_t capacity)
{
    if (text.size() >= capacity)
        return false;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

void Clear(UrlParts& parts)
{
    parts.scheme[0] = parts.host[0] = parts.userName[0] = 0;
    parts.password[0] = parts.path[0] = parts.extraInfo[0] = 0;
    parts.port = 0;
}

uint16_t DefaultPort(const std::string& scheme)
{
    if (EqualsIgnoreCase(scheme.c_str(), scheme.size(), "http"))
        return 80;
    if (EqualsIgnoreCase(scheme.c_str(), scheme.size(), "https"))
        return 443;
    if (EqualsIgnoreCase(scheme.c_str(), scheme.size(), "ftp"))
        return 21;
    return 0;
}

// A parsed URI whose members are freed however the scope is left.
struct ParsedUri {
    UriUriA uri;
    bool live = false;
    ParsedUri() = default;
    ParsedUri(const ParsedUri&) = delete;
    ParsedUri& operator=(const ParsedUri&) = delete;
    ~ParsedUri()
    {
        if (live)
            uriFreeUriMembersA(&uri);
    }
    bool Parse(const char* text)
    {
        const char* errorPos = nullptr;
        live = uriParseSingleUriA(&uri, text, &errorPos) == URI_SUCCESS;
        return live;
    }
};

// The highest port a URL can name; a larger one makes the URL invalid, as
// the Windows services have it, rather than being cut to 16 bits.
constexpr uint32_t kMaxPort = 65535;

// The components as texts of the original URL.
struct Cracked {
    std::string scheme, host, userName, password, path, extraInfo;
    bool hasAuthority = false;
    bool hasPort = false;
    uint32_t port = 0;
};

bool Split(const char* url, Cracked& cracked)
{
    const size_t schemeLength = SchemeLength(url);
    if (schemeLength == 0)
        return false;
    const std::string safe = Sanitize(url, schemeLength, false);

    ParsedUri parsed;
    if (!parsed.Parse(safe.c_str()))
        return false;
    const UriUriA& uri = parsed.uri;
    const char* origin = safe.c_str();
    auto text = [&](const UriTextRangeA& range) {
        if (!range.first || !range.afterLast)
            return std::string();
        return std::string(url + (range.first - origin), size_t(range.afterLast - range.first));
    };

    cracked.scheme.assign(url, schemeLength);
    cracked.hasAuthority = safe.compare(schemeLength + 1, 2, "//") == 0;
    cracked.host = text(uri.hostText);
    if (uri.hostData.ip6 || uri.hostData.ipFuture.first)
        cracked.host = "[" + cracked.host + "]";
    const std::string userInfo = text(uri.userInfo);
    const size_t colon = userInfo.find(':');
    cracked.userName = userInfo.substr(0, colon);
    cracked.password = colon == std::string::npos ? std::string() : userInfo.substr(colon + 1);
    if (uri.portText.first && uri.portText.afterLast > uri.portText.first) {
        cracked.hasPort = true;
        for (const char* p = uri.portText.first; p < uri.portText.afterLast; ++p) {
            cracked.port = cracked.port * 10 + uint32_t(*p - '0');
            if (cracked.port > kMaxPort) {
                Log(LogLevel::Error, "UrlServices::CrackUrl: port %.*s is above %u\n",
                    int(std::min<ptrdiff_t>(uri.portText.afterLast - uri.portText.first, 40)),
                    url + (uri.portText.first - origin), unsigned(kMaxPort));
                return false;
            }
        }
    }

    // The path runs from the end of the authority to the first '?' or '#'.
    size_t pathStart = schemeLength + 1;
    if (cracked.hasAuthority)
        pathStart = safe.find_first_of("/?#", pathStart + 2);
    if (pathStart == std::string::npos)
        pathStart = safe.size();
    size_t extraStart = safe.find_first_of("?#", pathStart);
    if (extraStart == std::string::npos)
        extraStart = safe.size();
    cracked.path.assign(url + pathStart, extraStart - pathStart);
    cracked.extraInfo.assign(url + extraStart);
    return true;
}

bool Deliver(Cracked& cracked, uint32_t wanted, UrlParts& parts)
{
    const bool ok =
        (!(wanted & UrlScheme) || Put(cracked.scheme, parts.scheme, UrlSchemeCapacity)) &&
        (!(wanted & UrlHost) || Put(cracked.host, parts.host, UrlHostCapacity)) &&
        (!(wanted & UrlUserName) || Put(cracked.userName, parts.userName, UrlUserNameCapacity)) &&
        (!(wanted & UrlPassword) || Put(cracked.password, parts.password, UrlPasswordCapacity)) &&
        (!(wanted & UrlPath) || Put(cracked.path, parts.path, UrlPathCapacity)) &&
        (!(wanted & UrlExtraInfo) || Put(cracked.extraInfo, parts.extraInfo, UrlExtraInfoCapacity));
    if (!ok)
        return false;
    if (wanted & UrlPort) {
        if (cracked.hasPort)
            parts.port = uint16_t(cracked.port);
        else if (cracked.hasAuthority)
            parts.port = DefaultPort(cracked.scheme);
    }
    return true;
}

enum class SchemeKind { None, File, Http, Other };

SchemeKind KindOf(const char* url, size_t schemeLength)
{
    if (schemeLength < 2)
        return SchemeKind::None;
    if (EqualsIgnoreCase(url, schemeLength, "file"))
        return SchemeKind::File;
    if (EqualsIgnoreCase(url, schemeLength, "http") || EqualsIgnoreCase(url, schemeLength, "https"))
        return SchemeKind::Http;
    return SchemeKind::Other;
}

bool NeedsUrlEscape(char c)
{
    const uint8_t b = uint8_t(c);
    return b <= 0x20 || b >= 0x7F || std::strchr("<>\"{}|\\^[]`&", c) != nullptr;
}

// "file:" followed by 1 or 3 slashes (or "//localhost/") gets three; two
// or four and more keep a server form with two; none stay none.
size_t NormaliseFileSlashes(const char* rest, std::string& out)
{
    size_t slashes = 0;
    while (rest[slashes] == '/' || rest[slashes] == '\\')
        ++slashes;
    size_t consumed = slashes;
    if (slashes == 2 && EqualsIgnoreCase(rest + 2, 9, "localhost") &&
        (rest[11] == '/' || rest[11] == '\\')) {
        consumed = 12;
        slashes = 3;
    }
    if (slashes == 1 || slashes == 3)
        out += "///";
    else if (slashes != 0)
        out += "//";
    return consumed;
}

// The Windows services escape a combined URL only up to its query or
// fragment, and escape '&' in the path: redo that on the RFC 3986 result.
// The extra info written in `relative` comes back as the caller wrote it.
std::string WindowsEscaping(const std::string& combined, const char* relative)
{
    const size_t schemeLength = SchemeLength(combined.c_str());
    size_t extraStart = combined.find_first_of("?#", schemeLength);
    const char* relativeExtra = std::strpbrk(relative, "?#");
    if (relativeExtra && *relativeExtra == '#')
        extraStart = combined.find('#', schemeLength);
    if (extraStart == std::string::npos)
        extraStart = combined.size();

    std::string out;
    for (size_t i = 0; i < extraStart; ++i) {
        if (combined[i] == '&')
            out += "%26";
        else
            out += combined[i];
    }
    out += relativeExtra ? std::string(relativeExtra) : combined.substr(extraStart);
    return out;
}

// uriparser is C, but the wrapper around it builds std::strings: an
// allocation failure (or a length beyond what a string can hold) must end
// as a failed call here, not travel up into the library and its host.
template <typename Body>
bool Guarded(const char* member, Body&& body)
{
    try {
        return body();
    } catch (const std::exception& error) {
        Log(LogLevel::Error, "UrlServices::%s: %s\n", member, error.what());
        return false;
    }
}

// Empties a failed call's output buffer; always false.
bool Cleared(char* out)
{
    if (out)
        out[0] = 0;
    return false;
}

bool UnguardedCrackUrl(const char* url, uint32_t wanted, bool decode, UrlParts& parts)
{
    Clear(parts);
    Cracked cracked;
    if (!url || !Split(url, cracked))
        return false;
    if (decode) {
        cracked.path = Unescape(RemoveDotSegments(cracked.path));
        if (cracked.hasAuthority && cracked.path.empty() && cracked.extraInfo.empty())
            cracked.path.assign(1, '/'); // not = "/": GCC 12 warns falsely (-Wrestrict)
        cracked.host = Unescape(cracked.host);
        cracked.userName = Unescape(cracked.userName);
        cracked.password = Unescape(cracked.password);
        cracked.extraInfo = Unescape(cracked.extraInfo);
    }
    if (!Deliver(cracked, wanted, parts)) {
        Clear(parts);
        return false;
    }
    return true;
}

bool UnguardedCombineUrl(const char* base, const char* relative, char* out)
{
    if (!base || !relative || !out)
        return false;
    out[0] = 0;
    const size_t baseScheme = SchemeLength(base);
    if (baseScheme == 0)
        return false;
    const std::string safeBase = Sanitize(base, baseScheme, true);
    const std::string safeRelative = Sanitize(relative, SchemeLength(relative), true);

    ParsedUri baseUri, relativeUri, result;
    if (!baseUri.Parse(safeBase.c_str()) || !relativeUri.Parse(safeRelative.c_str()))
        return false;
    result.live = uriAddBaseUriExA(&result.uri, &relativeUri.uri, &baseUri.uri,
                                   URI_RESOLVE_IDENTICAL_SCHEME_COMPAT) == URI_SUCCESS;
    int required = 0;
    const bool ok = result.live && uriToStringCharsRequiredA(&result.uri, &required) == URI_SUCCESS &&
                    required >= 0 && uint32_t(required) < UrlCapacity &&
                    uriToStringA(out, &result.uri, int(UrlCapacity), nullptr) == URI_SUCCESS;
    if (!ok) {
        out[0] = 0;
        return false;
    }
    return Put(WindowsEscaping(out, relative), out, UrlCapacity);
}

bool UnguardedEscapeUrl(const char* url, char* out)
{
    if (!url || !out)
        return false;
    out[0] = 0;
    const size_t schemeLength = SchemeLength(url);
    const SchemeKind kind = KindOf(url, schemeLength);

    std::string result;
    size_t i = 0;
    if (kind == SchemeKind::File) {
        result.assign(url, schemeLength + 1);
        i = schemeLength + 1 + NormaliseFileSlashes(url + schemeLength + 1, result);
    }
    bool escaping = true;
    for (; url[i]; ++i) {
        char c = url[i];
        if (c == '?' || (c == '#' && kind != SchemeKind::File))
            escaping = false;
        if (escaping && c == '\\' && (kind == SchemeKind::File || kind == SchemeKind::Http))
            c = '/';
        if (escaping && (NeedsUrlEscape(c) || (c == '#' && kind == SchemeKind::File)))
            AppendEscape(result, c);
        else
            result += c;
    }
    return Put(result, out, UrlCapacity);
}

bool UnguardedUnescapeUrl(const char* url, char* out)
{
    if (!url || !out)
        return false;
    out[0] = 0;
    return Put(Unescape(url), out, UrlCapacity);
}

bool UnguardedUrlFromPath(const char* path, char* out)
{
    if (!path || !out)
        return false;
    out[0] = 0;
    if (SchemeLength(path) >= 2)
        return Put(path, out, UrlCapacity);

    // uriparser needs room for every byte escaped plus "file://".
    std::vector<char> buffer(std::strlen(path) * 3 + 16);
    if (uriUnixFilenameToUriStringA(path, buffer.data()) != URI_SUCCESS)
        return false;
    std::string url = buffer.data();
    if (path[0] != '/')
        url = "file:" + url;
    else if (path[1] == '/' && path[2] != '/' && url.rfind("file:////", 0) == 0)
        url.erase(5, 2); // //server/share becomes file://server/share
    return Put(url, out, UrlCapacity);
}

bool UnguardedPathFromUrl(const char* url, char* out)
{
    if (!url || !out)
        return false;
    out[0] = 0;
    Cracked cracked;
    if (!IsFileUrl(url) || !Split(url, cracked))
        return false;
    std::string path = Unescape(cracked.path);
    if (!cracked.host.empty() && !EqualsIgnoreCase(cracked.host.c_str(), cracked.host.size(), "localhost"))
        path = "//" + Unescape(cracked.host) + path;
    if (path.empty())
        return false;
    return Put(path, out, LocalPathCapacity);
}

} // namespace

bool CrackUrl(const char* url, uint32_t wanted, bool decode, UrlParts& parts)
{
    const bool ok = Guarded("CrackUrl", [&] { return UnguardedCrackUrl(url, wanted, decode, parts); });
    if (!ok)
        Clear(parts);
    return ok;
}

bool CombineUrl(const char* base, const char* relative, char* out)
{
    return Guarded("CombineUrl", [&] { return UnguardedCombineUrl(base, relative, out); }) || Cleared(out);
}

bool EscapeUrl(const char* url, char* out)
{
    return Guarded("EscapeUrl", [&] { return UnguardedEscapeUrl(url, out); }) || Cleared(out);
}

bool UnescapeUrl(const char* url, char* out)
{
    return Guarded("UnescapeUrl", [&] { return UnguardedUnescapeUrl(url, out); }) || Cleared(out);
}

bool UrlFromPath(const char* path, char* out)
{
    return Guarded("UrlFromPath", [&] { return UnguardedUrlFromPath(path, out); }) || Cleared(out);
}

bool PathFromUrl(const char* url, char* out)
{
    return Guarded("PathFromUrl", [&] { return UnguardedPathFromUrl(url, out); }) || Cleared(out);
}

bool IsFileUrl(const char* url)
{
    return url && EqualsIgnoreCase(url, std::min<size_t>(std::strlen(url), 5), "file:");
}

bool IsUncPath(const char* path)
{
    if (!path)
        return false;
    if (path[0] == '\\' && path[1] == '\\')
        return true;
    return path[0] == '/' && path[1] == '/' && path[2] != '/' && path[2] != 0;
}

} // namespace Quorvex::Vek::Platform
