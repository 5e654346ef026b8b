#pragma once

// URL services of the platform: cracking a URL into its components,
// combining a base with a relative reference, the URL-level escaping and
// unescaping, and the conversions between file-system paths and "file" URLs.
//
// Windows answers with WinINet and the shell's URL helpers; other platforms
// with uriparser, wrapped to the same limits and failure rules. Every
// function fills a caller-supplied fixed buffer and returns false (writing
// nothing useful) when the input cannot be handled or a result does not fit.
// Buffer sizes count the terminator.
#include <cstdint>

namespace Quorvex::Vek::Platform {

constexpr uint32_t UrlSchemeCapacity = 32;
constexpr uint32_t UrlHostCapacity = 256;
constexpr uint32_t UrlUserNameCapacity = 128;
constexpr uint32_t UrlPasswordCapacity = 128;
constexpr uint32_t UrlPathCapacity = 2048;
constexpr uint32_t UrlExtraInfoCapacity = 2048;
// A URL built, escaped, unescaped or combined.
constexpr uint32_t UrlCapacity = 2084;
// A local path made from a "file" URL.
constexpr uint32_t LocalPathCapacity = 256;

// Which components CrackUrl should fill (bit mask).
enum UrlComponent : uint32_t {
    UrlScheme = 1u << 0,
    UrlHost = 1u << 1,
    UrlPort = 1u << 2,
    UrlUserName = 1u << 3,
    UrlPassword = 1u << 4,
    UrlPath = 1u << 5,
    UrlExtraInfo = 1u << 6,
};

struct UrlParts {
    char scheme[UrlSchemeCapacity];
    char host[UrlHostCapacity];
    char userName[UrlUserNameCapacity];
    char password[UrlPasswordCapacity];
    // Never includes the extra info. For "file" URLs the form is the
    // platform's (Windows turns it into a drive or UNC path).
    char path[UrlPathCapacity];
    // What follows the path: the query and/or fragment with its leading
    // '?' or '#'.
    char extraInfo[UrlExtraInfoCapacity];
    // The explicit port (kept to 16 bits), else the scheme's default
    // (http 80, https 443, ftp 21) when the URL has an authority, else 0.
    uint16_t port;
};

// Splits `url` into the components named by `wanted`; the others are left
// empty. With `decode`, percent escapes are decoded and the path cleared of
// dot segments (an empty path after an authority becomes "/"). Fails when
// the URL has no scheme, cannot be parsed, or a wanted component is too long.
bool CrackUrl(const char* url, uint32_t wanted, bool decode, UrlParts& parts);

// Resolves `relative` against `base`, removing dot segments and escaping
// unsafe characters. `out` holds UrlCapacity characters.
bool CombineUrl(const char* base, const char* relative, char* out);

// Escapes the characters that are unsafe in a URL (space, controls, bytes
// of 0x7F and above, and < > " { } | \ ^ [ ] ` &) up to the first '?' or '#'
// ("file" URLs escape '#' too and keep going to the '?'); leaves '%' alone.
// Normalises the slashes of "file" URLs. `out` holds UrlCapacity characters.
bool EscapeUrl(const char* url, char* out);

// Decodes every '%' followed by two hexadecimal digits; other '%' stay.
// `out` holds UrlCapacity characters.
bool UnescapeUrl(const char* url, char* out);

// A "file" URL for a file-system path (a text that is already a URL is
// returned as it is). `out` holds UrlCapacity characters.
bool UrlFromPath(const char* path, char* out);

// The file-system path of a "file" URL. `out` holds LocalPathCapacity
// characters.
bool PathFromUrl(const char* url, char* out);

// True when `url` starts with the "file:" scheme (any case).
bool IsFileUrl(const char* url);

// True when `path` names a network share (\\server\share on Windows,
// also //server/share elsewhere).
bool IsUncPath(const char* path);

} // namespace Quorvex::Vek::Platform
