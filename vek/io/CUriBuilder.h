#pragma once

// Assembles a URL from its parts:
//   scheme "://" [user [":" password] "@"] host [":" port] path extra-info
// The port is written only when it is not 0 and not the scheme's default;
// a path without a leading '/' gets one. The text is stored in a CUri as it
// is, so the parts must be escaped already unless GetUri is asked to
// escape them.
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class CString;
class CUri;
class CUriParameterCollection;

class VEK_API CUriBuilder : public CObject {
public:
    enum : uint32_t { Type = Four("urib") };

    // All return a new builder owned by the caller, or null.
    static CUriBuilder* Create();
    // The components of `uri` (path decoded); null when it cannot be cracked.
    static CUriBuilder* Create(CUri* uri);
    static CUriBuilder* Create(const char* scheme, const char* host, uint16_t port,
                               const char* path, const char* extraInfo);
    static CUriBuilder* Create(const char* scheme, const char* host, uint16_t port,
                               const char* path, CUriParameterCollection* parameters,
                               const char* fragment);

    // Setters copy the text (null clears); they return false only when out
    // of memory. Getters return borrowed strings, never null.
    bool SetScheme(const char* scheme);
    bool SetHost(const char* host);
    bool SetUserName(const char* userName);
    bool SetPassword(const char* password);
    bool SetPath(const char* path);
    bool SetExtraInfo(const char* extraInfo);
    void SetPort(uint16_t port) { m_port = port; }
    CString* GetScheme() const { return m_scheme; }
    CString* GetHost() const { return m_host; }
    CString* GetUserName() const { return m_userName; }
    CString* GetPassword() const { return m_password; }
    CString* GetPath() const { return m_path; }
    CString* GetExtraInfo() const { return m_extraInfo; }
    uint16_t GetPort() const { return m_port; }

    // A new CUri owned by the caller, or null (no scheme, or the URL would
    // exceed 2,083 characters). With `escape`, the user name, password and
    // path are percent-escaped on the way (the path keeps its '/').
    CUri* GetUri(bool escape);

    // "?name=value&..." with names and values escaped, then "#fragment"
    // when a fragment is given; empty when there is neither. A new string,
    // or null when out of memory.
    static CString* BuildExtraInfoString(CUriParameterCollection* parameters, const char* fragment);

protected:
    CUriBuilder();
    ~CUriBuilder() override;

private:
    bool Initialise(const char* scheme, const char* host, uint16_t port, const char* path,
                    const char* extraInfo);

    RObject<CString> m_scheme;
    RObject<CString> m_host;
    RObject<CString> m_userName;
    RObject<CString> m_password;
    RObject<CString> m_path;
    RObject<CString> m_extraInfo;
    uint16_t m_port = 0;
};

} // namespace Quorvex::Vek
