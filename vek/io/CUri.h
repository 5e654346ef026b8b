#pragma once

// A URL naming media: one escaped URL text and the questions a reader asks
// about it (scheme, host, port, path, query, fragment, local file path,
// file or network share). The statics answer the same questions for any
// CString holding a URL.
//
// Conventions: every CString* returned is a new reference owned by the
// caller; a null input, a URL that cannot be cracked or a component longer
// than its limit gives null (GetPort: 0). Nothing here returns a result
// code. Limits in characters, terminator included: scheme 32, host 256,
// user name and password 128, path 2,048, extra info 2,048; a URL made or
// combined 2,084; a local path made from a URL 256.
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class CString;

class VEK_API CUri : public CObject {
public:
    enum : uint32_t { Type = Four("uri ") };

    static const char* const UriSchemeFile;  // "file"
    static const char* const UriSchemeFtp;   // "ftp"
    static const char* const UriSchemeHttp;  // "http"
    static const char* const UriSchemeHttps; // "https"
    static const char* const UriSchemeMms;   // "mms"
    static const char* const UriSchemeRtsp;  // "rtsp"

    // Flag of EscapeDataString: leave '/' unescaped so paths keep their
    // separators.
    static constexpr unsigned int EscapeKeepSlash = 1;

    // Construction: a new CUri owned by the caller, or null.
    // Normalises by unescaping and escaping the text again.
    static CUri* CreateWithUrl(const char* url);
    static CUri* CreateWithUrl(CString* url);
    // Stores the text as it is.
    static CUri* CreateWithEscapedUrl(const char* url);
    static CUri* CreateWithFormat(const char* format, ...) VEK_PRINTF(1, 2);
    // A "file" URL for a file-system path.
    static CUri* CreateWithLocalPath(const char* path);
    // `relative` (unescaped first) resolved against `base`; a null base
    // makes it CreateWithUrl(relative).
    static CUri* CreateWithRelativeUrl(CUri* base, const char* relative);
    static CUri* CreateWithRelativeUrl(CUri* base, CString* relative);

    CString* GetScheme();
    static CString* GetScheme(CString* url);
    CString* GetHost();
    static CString* GetHost(CString* url);
    uint16_t GetPort();
    static uint16_t GetPort(CString* url);
    CString* GetUserName();
    static CString* GetUserName(CString* url);
    CString* GetPassword();
    static CString* GetPassword(CString* url);
    // Escapes decoded, cut at the first '?' and the first '#'.
    CString* GetPath();
    static CString* GetPath(CString* url);
    // The query and/or fragment with their leading '?' or '#'.
    CString* GetExtraInfo();
    static CString* GetExtraInfo(CString* url);
    CString* GetQuery();
    static CString* GetQuery(CString* url);
    CString* GetFragment();
    static CString* GetFragment(CString* url);
    // The decoded path after its last '/' (all of it when it has none).
    CString* GetLastPathComponent();
    static CString* GetLastPathComponent(CString* url);
    // After the last '.' of the last path component; null without a '.'.
    CString* GetPathExtension();
    static CString* GetPathExtension(CString* url);
    // The file-system path of a "file" URL; GetPath for any other URL.
    CString* GetLocalPath();
    // The stored URL text.
    CString* GetAbsoluteUri();
    CString* GetPathAndExtraInfo();

    bool IsFile();
    // True when the local path names a network share.
    bool IsUnc();
    // Compares the scheme, ignoring case.
    bool IsScheme(const char* scheme);
    static bool IsScheme(const char* url, const char* scheme);
    // True when the text starts with a scheme of two or more characters and
    // a colon (so a drive path such as C:\x is not absolute).
    bool IsAbsoluteUri();
    static bool IsAbsoluteUri(CString* url);

    // The library's reserved characters: ; / ? : @ & = + $ , ^ ` { } | [ ] " < >,
    // the backslash, and everything outside 0x21..0x7E.
    static bool IsReserved(char c);
    static bool IsHexDigit(char c);
    // 0..15, or -1 for a character that is not a hexadecimal digit.
    static int FromHexDigit(char c);
    // '0'..'9', 'A'..'F' for 0..15; 0 for any other value.
    static char ToHexDigit(int32_t value);

    // Percent-escapes every reserved byte (keeping '/' with
    // EscapeKeepSlash). Returns `text` itself with one more reference when
    // nothing needs escaping; a null text gives a new empty string.
    static CString* EscapeDataString(CString* text, unsigned int flags);
    // Decodes %hh escapes; null when any '%' lacks two hexadecimal digits.
    // Returns `text` itself with one more reference when it has no '%'.
    static CString* UnescapeDataString(CString* text);
    // Forgiving decoding for labels and form values: '+' becomes a space,
    // %hh is decoded and a '%' without two hexadecimal digits is kept as it
    // stands. Null only for a null text or when out of memory.
    static CString* UniformResourceLabelUnEscape(CString* text);
    // Splits extra info into query (after a leading '?', up to the first
    // '#') and fragment (after that '#', or after a leading '#'). Both
    // outputs are new strings owned by the caller (empty when absent).
    static void CrackExtraInfo(CString* extra, CString*& query, CString*& fragment);

protected:
    // Adopts `url`.
    CUri(CString* url, uint32_t type = Type);
    ~CUri() override;

    RObject<CString> m_url;
};

} // namespace Quorvex::Vek
