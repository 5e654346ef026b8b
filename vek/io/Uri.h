#pragma once

// Public handle on a CUri. Calls forward to the URI; a null handle answers
// null, 0 or false. Strings come back as owned references.
#include <vek/core/BaseObject.h>
#include <vek/core/CString.h>
#include <vek/io/CUri.h>

namespace Quorvex::Vek {

class VEK_API Uri : public Object<CUri> {
public:
    Uri() = default;
    // Adopts the caller's reference.
    // BaseObject is a virtual base: the most derived class must initialise it.
    Uri(CUri* uri) : BaseObject(uri) {}
    static Uri FromObject(CUri* uri);

    // Each gives a null handle on failure.
    static Uri CreateWithUrl(const char* url);
    static Uri CreateWithEscapedUrl(const char* url);
    static Uri CreateWithLocalPath(const char* path);
    static Uri CreateWithRelativeUrl(const Uri& base, const char* relative);

    RObject<CString> GetScheme() const;
    RObject<CString> GetHost() const;
    uint16_t GetPort() const;
    RObject<CString> GetUserName() const;
    RObject<CString> GetPassword() const;
    RObject<CString> GetPath() const;
    RObject<CString> GetExtraInfo() const;
    RObject<CString> GetQuery() const;
    RObject<CString> GetFragment() const;
    RObject<CString> GetLastPathComponent() const;
    RObject<CString> GetPathExtension() const;
    RObject<CString> GetLocalPath() const;
    RObject<CString> GetAbsoluteUri() const;
    bool IsFile() const;
    bool IsUnc() const;
    bool IsScheme(const char* scheme) const;
    bool IsAbsoluteUri() const;
};

} // namespace Quorvex::Vek
