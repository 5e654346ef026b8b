#include <vek/io/CUri.h>

#include <vek/core/CString.h>
#include <vek/core/CharClass.h>
#include <vek/core/FormattedText.h>
#include <vek/core/Log.h>
#include <vek/platform/UrlServices.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

namespace Quorvex::Vek {

const char* const CUri::UriSchemeFile = "file";
const char* const CUri::UriSchemeFtp = "ftp";
const char* const CUri::UriSchemeHttp = "http";
const char* const CUri::UriSchemeHttps = "https";
const char* const CUri::UriSchemeMms = "mms";
const char* const CUri::UriSchemeRtsp = "rtsp";

namespace {

using Platform::UrlParts;

// A URL-sized scratch buffer; on the heap because the services' limits make
// stack buffers large.
struct UrlBuffer {
    std::unique_ptr<char[]> text{new (fallible) char[Platform::UrlCapacity]};
    explicit operator bool() const { return text != nullptr; }
    char* get() const { return text.get(); }
};

const char* Chars(CString* text)
{
    return text ? text->GetChars() : nullptr;
}

CString* NewString(const char* text)
{
    return CString::Create(text);
}

CString* NewString(const char* text, size_t length)
{
    return CString::Create(text, int32_t(length));
}

std::unique_ptr<UrlParts> Crack(const char* url, uint32_t wanted, bool decode)
{
    if (!url)
        return nullptr;
    std::unique_ptr<UrlParts> parts(new (fallible) UrlParts);
    if (!parts || !Platform::CrackUrl(url, wanted, decode, *parts))
        return nullptr;
    return parts;
}

CString* CrackText(CString* url, uint32_t component, char* (*select)(UrlParts&))
{
    std::unique_ptr<UrlParts> parts = Crack(Chars(url), component, false);
    return parts ? NewString(select(*parts)) : nullptr;
}

// The path with escapes decoded, cut at the first '?' and the first '#'
// (decoding can turn an escaped '?' or '#' into a real one).
bool DecodedPath(const char* url, size_t& length, std::unique_ptr<UrlParts>& parts)
{
    parts = Crack(url, Platform::UrlPath, true);
    if (!parts)
        return false;
    length = std::strcspn(parts->path, "?#");
    return true;
}

// The last path component as [begin, begin + length) of the decoded path.
CString* LastComponent(const char* url, bool extensionOnly)
{
    std::unique_ptr<UrlParts> parts;
    size_t length = 0;
    if (!DecodedPath(url, length, parts))
        return nullptr;
    const char* path = parts->path;
    size_t start = 0;
    for (size_t i = 0; i < length; ++i)
        if (path[i] == '/')
            start = i + 1;
    if (!extensionOnly)
        return NewString(path + start, length - start);
    size_t dot = length;
    for (size_t i = start; i < length; ++i)
        if (path[i] == '.')
            dot = i;
    if (dot == length)
        return nullptr;
    return NewString(path + dot + 1, length - dot - 1);
}

bool IsSchemeChar(char c)
{
    return CharClass::IsAsciiLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

bool SchemeEquals(const char* scheme, const char* wanted)
{
    if (!scheme || !wanted)
        return false;
    const size_t length = std::strlen(scheme);
    return length == std::strlen(wanted) && CharClass::EqualsIgnoreAsciiCase(scheme, wanted, int32_t(length));
}

} // namespace

CUri::CUri(CString* url, uint32_t type) : CObject(type), m_url(url) {}

CUri::~CUri() = default;

CUri* CUri::CreateWithUrl(const char* url)
{
    if (!url)
        return nullptr;
    UrlBuffer unescaped, escaped;
    if (!unescaped || !escaped)
        return nullptr;
    if (!Platform::UnescapeUrl(url, unescaped.get()) ||
        !Platform::EscapeUrl(unescaped.get(), escaped.get())) {
        Log(LogLevel::Warning, "CUri::CreateWithUrl: cannot normalise a URL of %zu characters\n",
            std::strlen(url));
        return nullptr;
    }
    return CreateWithEscapedUrl(escaped.get());
}

CUri* CUri::CreateWithUrl(CString* url)
{
    return CreateWithUrl(Chars(url));
}

CUri* CUri::CreateWithEscapedUrl(const char* url)
{
    if (!url)
        return nullptr;
    CString* text = NewString(url);
    if (!text)
        return nullptr;
    CUri* uri = new (fallible) CUri(text);
    if (!uri)
        text->Release();
    return uri;
}

CUri* CUri::CreateWithFormat(const char* format, ...)
{
    if (!format)
        return nullptr;
    va_list arguments;
    va_start(arguments, format);
    const FormattedText text(format, arguments);
    va_end(arguments);
    return text.Get() ? CreateWithUrl(text.Get()) : nullptr;
}

CUri* CUri::CreateWithLocalPath(const char* path)
{
    UrlBuffer url;
    if (!path || !url)
        return nullptr;
    if (!Platform::UrlFromPath(path, url.get())) {
        Log(LogLevel::Warning, "CUri::CreateWithLocalPath: cannot make a URL of a path of %zu characters\n",
            std::strlen(path));
        return nullptr;
    }
    return CreateWithEscapedUrl(url.get());
}

CUri* CUri::CreateWithRelativeUrl(CUri* base, const char* relative)
{
    if (!base)
        return CreateWithUrl(relative);
    UrlBuffer unescaped, combined;
    if (!relative || !unescaped || !combined)
        return nullptr;
    if (!Platform::UnescapeUrl(relative, unescaped.get()) ||
        !Platform::CombineUrl(Chars(base->m_url), unescaped.get(), combined.get())) {
        Log(LogLevel::Warning, "CUri::CreateWithRelativeUrl: cannot combine a reference of %zu characters\n",
            std::strlen(relative));
        return nullptr;
    }
    return CreateWithEscapedUrl(combined.get());
}

CUri* CUri::CreateWithRelativeUrl(CUri* base, CString* relative)
{
    return CreateWithRelativeUrl(base, Chars(relative));
}

CString* CUri::GetScheme(CString* url)
{
    return CrackText(url, Platform::UrlScheme, [](UrlParts& p) -> char* { return p.scheme; });
}

CString* CUri::GetHost(CString* url)
{
    return CrackText(url, Platform::UrlHost, [](UrlParts& p) -> char* { return p.host; });
}

uint16_t CUri::GetPort(CString* url)
{
    std::unique_ptr<UrlParts> parts = Crack(Chars(url), Platform::UrlPort, false);
    return parts ? parts->port : 0;
}

CString* CUri::GetUserName(CString* url)
{
    return CrackText(url, Platform::UrlUserName, [](UrlParts& p) -> char* { return p.userName; });
}

CString* CUri::GetPassword(CString* url)
{
    return CrackText(url, Platform::UrlPassword, [](UrlParts& p) -> char* { return p.password; });
}

CString* CUri::GetPath(CString* url)
{
    std::unique_ptr<UrlParts> parts;
    size_t length = 0;
    if (!DecodedPath(Chars(url), length, parts))
        return nullptr;
    return NewString(parts->path, length);
}

CString* CUri::GetExtraInfo(CString* url)
{
    // The URL services disagree on a '?' after a '#' ("http://h/p#f?x"): the
    // extra info is cut from the URL text here, at its first '?' or '#',
    // which no scheme, authority or path holds unescaped. The crack only
    // checks that the text is a URL.
    const char* text = Chars(url);
    if (!Crack(text, Platform::UrlPort, false))
        return nullptr;
    const char* extra = std::strpbrk(text, "?#");
    if (!extra)
        return NewString("");
    const size_t length = std::strlen(extra);
    if (length >= Platform::UrlExtraInfoCapacity) {
        Log(LogLevel::Error, "CUri::GetExtraInfo: extra info of %zu characters is over the limit\n", length);
        return nullptr;
    }
    return NewString(extra, length);
}

CString* CUri::GetQuery(CString* url)
{
    RObject<CString> extra(GetExtraInfo(url));
    if (!extra)
        return nullptr;
    CString* query = nullptr;
    CString* fragment = nullptr;
    CrackExtraInfo(extra, query, fragment);
    if (fragment)
        fragment->Release();
    return query;
}

CString* CUri::GetFragment(CString* url)
{
    RObject<CString> extra(GetExtraInfo(url));
    if (!extra)
        return nullptr;
    CString* query = nullptr;
    CString* fragment = nullptr;
    CrackExtraInfo(extra, query, fragment);
    if (query)
        query->Release();
    return fragment;
}

CString* CUri::GetLastPathComponent(CString* url)
{
    return LastComponent(Chars(url), false);
}

CString* CUri::GetPathExtension(CString* url)
{
    return LastComponent(Chars(url), true);
}

CString* CUri::GetScheme() { return GetScheme(m_url); }
CString* CUri::GetHost() { return GetHost(m_url); }
uint16_t CUri::GetPort() { return GetPort(m_url); }
CString* CUri::GetUserName() { return GetUserName(m_url); }
CString* CUri::GetPassword() { return GetPassword(m_url); }
CString* CUri::GetPath() { return GetPath(m_url); }
CString* CUri::GetExtraInfo() { return GetExtraInfo(m_url); }
CString* CUri::GetQuery() { return GetQuery(m_url); }
CString* CUri::GetFragment() { return GetFragment(m_url); }
CString* CUri::GetLastPathComponent() { return GetLastPathComponent(m_url); }
CString* CUri::GetPathExtension() { return GetPathExtension(m_url); }

CString* CUri::GetLocalPath()
{
    if (!IsFile())
        return GetPath();
    std::unique_ptr<char[]> path(new (fallible) char[Platform::LocalPathCapacity]);
    if (!path || !Platform::PathFromUrl(Chars(m_url), path.get()))
        return nullptr;
    return NewString(path.get());
}

CString* CUri::GetAbsoluteUri()
{
    if (m_url)
        m_url->Acquire();
    return m_url;
}

CString* CUri::GetPathAndExtraInfo()
{
    RObject<CString> path(GetPath());
    RObject<CString> extra(GetExtraInfo());
    if (!path || !extra)
        return nullptr;
    return CString::Concat(path, extra);
}

bool CUri::IsFile()
{
    return Platform::IsFileUrl(Chars(m_url));
}

bool CUri::IsUnc()
{
    RObject<CString> path(GetLocalPath());
    return path && Platform::IsUncPath(path->GetChars());
}

bool CUri::IsScheme(const char* scheme)
{
    return IsScheme(Chars(m_url), scheme);
}

bool CUri::IsScheme(const char* url, const char* scheme)
{
    std::unique_ptr<UrlParts> parts = Crack(url, Platform::UrlScheme, false);
    return parts && SchemeEquals(parts->scheme, scheme);
}

bool CUri::IsAbsoluteUri()
{
    return IsAbsoluteUri(m_url);
}

bool CUri::IsAbsoluteUri(CString* url)
{
    const char* text = Chars(url);
    if (!text || !CharClass::IsAsciiLetter(text[0]))
        return false;
    size_t n = 1;
    while (IsSchemeChar(text[n]))
        ++n;
    return n >= 2 && text[n] == ':';
}

} // namespace Quorvex::Vek
