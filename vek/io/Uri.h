#pragma once

// Public handle on a CUri. Calls forward to the URI; a null handle answers
// null, 0 or false. Strings come back as String handles (null on failure).
#include <vek/core/BaseObject.h>
#include <vek/core/String.h>
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

    String GetScheme() const;
    String GetHost() const;
    uint16_t GetPort() const;
    String GetUserName() const;
    String GetPassword() const;
    String GetPath() const;
    String GetExtraInfo() const;
    String GetQuery() const;
    String GetFragment() const;
    String GetLastPathComponent() const;
    String GetPathExtension() const;
    String GetLocalPath() const;
    String GetAbsoluteUri() const;
    bool IsFile() const;
    bool IsUnc() const;
    bool IsScheme(const char* scheme) const;
    bool IsAbsoluteUri() const;
};

} // namespace Quorvex::Vek
