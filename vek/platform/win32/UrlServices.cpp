#include <vek/platform/UrlServices.h>

#include <vek/core/Log.h>

#include <windows.h>
#include <wininet.h>
#include <shlwapi.h>

#include <cstring>
#include <vector>

namespace Quorvex::Vek::Platform {

namespace {

void Clear(UrlParts& parts)
{
    parts.scheme[0] = parts.host[0] = parts.userName[0] = 0;
    parts.password[0] = parts.path[0] = parts.extraInfo[0] = 0;
    parts.port = 0;
}

// Hands a buffer to WinINet only for wanted components: a component with no
// buffer is not returned, and one whose text does not fit fails the crack.
void Want(bool wanted, char* buffer, uint32_t capacity, LPSTR& field, DWORD& length)
{
    field = wanted ? buffer : nullptr;
    length = wanted ? capacity : 0;
}

// WinINet keeps only the low 16 bits of a port that is too large
// ("http://h:65536/" reads as port 0), where a URL with such a port is not
// valid at all; refuse it before cracking, as uriparser's wrapper does.
bool PortInRange(const char* url)
{
    const char* authority = std::strstr(url, "://");
    if (!authority)
        return true;
    authority += 3;
    const size_t length = std::strcspn(authority, "/\\?#");
    const char* end = authority + length;
    const char* host = authority;
    for (const char* p = authority; p < end; ++p)
        if (*p == '@')
            host = p + 1;
    if (*host == '[') {
        while (host < end && *host != ']')
            ++host;
    }
    const char* colon = nullptr;
    for (const char* p = host; p < end; ++p)
        if (*p == ':')
            colon = p;
    if (!colon)
        return true;
    uint32_t port = 0;
    for (const char* p = colon + 1; p < end; ++p) {
        if (*p < '0' || *p > '9')
            return true; // not a number: WinINet's own answer stands
        port = port * 10 + uint32_t(*p - '0');
        if (port > 65535) {
            Log(LogLevel::Error, "UrlServices::CrackUrl: port %.*s is above 65535\n",
                int(end - colon - 1 > 40 ? 40 : end - colon - 1), colon + 1);
            return false;
        }
    }
    return true;
}

} // namespace

bool CrackUrl(const char* url, uint32_t wanted, bool decode, UrlParts& parts)
{
    Clear(parts);
    if (!url || !PortInRange(url))
        return false;

    URL_COMPONENTSA components{};
    components.dwStructSize = sizeof(components);
    Want(wanted & UrlScheme, parts.scheme, UrlSchemeCapacity, components.lpszScheme,
         components.dwSchemeLength);
    Want(wanted & UrlHost, parts.host, UrlHostCapacity, components.lpszHostName,
         components.dwHostNameLength);
    Want(wanted & UrlUserName, parts.userName, UrlUserNameCapacity, components.lpszUserName,
         components.dwUserNameLength);
    Want(wanted & UrlPassword, parts.password, UrlPasswordCapacity, components.lpszPassword,
         components.dwPasswordLength);
    Want(wanted & UrlPath, parts.path, UrlPathCapacity, components.lpszUrlPath,
         components.dwUrlPathLength);

    // Without an extra-info buffer WinINet appends the extra info to the
    // path; give it a scratch buffer as long as the URL so the path stays
    // clean without the extra info's own limit applying.
    std::vector<char> scratch;
    if (wanted & UrlExtraInfo) {
        components.lpszExtraInfo = parts.extraInfo;
        components.dwExtraInfoLength = UrlExtraInfoCapacity;
    } else if (wanted & UrlPath) {
        scratch.resize(std::strlen(url) + 1);
        components.lpszExtraInfo = scratch.data();
        components.dwExtraInfoLength = DWORD(scratch.size());
    }

    if (!InternetCrackUrlA(url, 0, decode ? ICU_DECODE : 0, &components)) {
        Clear(parts);
        return false;
    }
    if (wanted & UrlPort)
        parts.port = components.nPort;
    return true;
}

bool CombineUrl(const char* base, const char* relative, char* out)
{
    if (!base || !relative || !out)
        return false;
    DWORD length = UrlCapacity;
    if (!InternetCombineUrlA(base, relative, out, &length, 0)) {
        out[0] = 0;
        return false;
    }
    return true;
}

bool EscapeUrl(const char* url, char* out)
{
    if (!url || !out)
        return false;
    DWORD length = UrlCapacity;
    if (FAILED(UrlEscapeA(url, out, &length, 0))) {
        out[0] = 0;
        return false;
    }
    return true;
}

bool UnescapeUrl(const char* url, char* out)
{
    if (!url || !out)
        return false;
    DWORD length = UrlCapacity;
    if (FAILED(UrlUnescapeA(const_cast<char*>(url), out, &length, 0))) {
        out[0] = 0;
        return false;
    }
    return true;
}

bool UrlFromPath(const char* path, char* out)
{
    if (!path || !out)
        return false;
    DWORD length = UrlCapacity;
    if (FAILED(UrlCreateFromPathA(path, out, &length, 0))) {
        out[0] = 0;
        return false;
    }
    return true;
}

bool PathFromUrl(const char* url, char* out)
{
    if (!url || !out)
        return false;
    DWORD length = LocalPathCapacity;
    if (FAILED(PathCreateFromUrlA(url, out, &length, 0))) {
        out[0] = 0;
        return false;
    }
    return true;
}

bool IsFileUrl(const char* url)
{
    return url && UrlIsA(url, URLIS_FILEURL);
}

bool IsUncPath(const char* path)
{
    return path && PathIsUNCA(path);
}

} // namespace Quorvex::Vek::Platform
