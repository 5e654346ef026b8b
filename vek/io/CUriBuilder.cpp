#include <vek/io/CUriBuilder.h>

#include <vek/core/CString.h>
#include <vek/core/Log.h>
#include <vek/io/CUri.h>
#include <vek/io/CUriParameterCollection.h>
#include <vek/platform/UrlServices.h>

#include <cstring>
#include <new>
#include <string>

namespace Quorvex::Vek {

namespace {

bool Assign(RObject<CString>& field, const char* text)
{
    CString* value = CString::Create(text ? text : "");
    if (!value)
        return false;
    field = value;
    return true;
}

bool Assign(RObject<CString>& field, CString* text)
{
    if (!text)
        return false;
    field = text; // adopts the caller's new reference
    return true;
}

uint16_t DefaultPort(CString* scheme)
{
    if (scheme->EqualsIgnoreCase(CUri::UriSchemeHttp))
        return 80;
    if (scheme->EqualsIgnoreCase(CUri::UriSchemeHttps))
        return 443;
    if (scheme->EqualsIgnoreCase(CUri::UriSchemeFtp))
        return 21;
    return 0;
}

// The text of `part`, escaped when asked; false when out of memory.
bool Render(CString* part, bool escape, unsigned int flags, std::string& out)
{
    if (!escape) {
        out += part->GetChars();
        return true;
    }
    RObject<CString> escaped(CUri::EscapeDataString(part, flags));
    if (!escaped)
        return false;
    out += escaped->GetChars();
    return true;
}

bool AppendEscaped(std::string& out, CString* text)
{
    RObject<CString> escaped(CUri::EscapeDataString(text, 0));
    if (!escaped)
        return false;
    out += escaped->GetChars();
    return true;
}

} // namespace

CUriBuilder::CUriBuilder() : CObject(Type) {}

CUriBuilder::~CUriBuilder() = default;

bool CUriBuilder::Initialise(const char* scheme, const char* host, uint16_t port, const char* path,
                             const char* extraInfo)
{
    m_port = port;
    return SetScheme(scheme) && SetHost(host) && SetUserName(nullptr) && SetPassword(nullptr) &&
           SetPath(path) && SetExtraInfo(extraInfo);
}

CUriBuilder* CUriBuilder::Create()
{
    return Create(nullptr, nullptr, 0, nullptr, nullptr);
}

CUriBuilder* CUriBuilder::Create(CUri* uri)
{
    if (!uri)
        return nullptr;
    RObject<CUriBuilder> builder(new (fallible) CUriBuilder());
    if (!builder)
        return nullptr;
    RObject<CString> path(uri->GetPath());
    RObject<CString> extra(uri->GetExtraInfo());
    if (!path || !extra || !Assign(builder->m_scheme, uri->GetScheme()) ||
        !Assign(builder->m_host, uri->GetHost()) || !Assign(builder->m_userName, uri->GetUserName()) ||
        !Assign(builder->m_password, uri->GetPassword()))
        return nullptr;
    builder->m_path = path;
    builder->m_extraInfo = extra;
    builder->m_port = uri->GetPort();
    return builder.Detach();
}

CUriBuilder* CUriBuilder::Create(const char* scheme, const char* host, uint16_t port,
                                 const char* path, const char* extraInfo)
{
    RObject<CUriBuilder> builder(new (fallible) CUriBuilder());
    if (!builder || !builder->Initialise(scheme, host, port, path, extraInfo))
        return nullptr;
    return builder.Detach();
}

CUriBuilder* CUriBuilder::Create(const char* scheme, const char* host, uint16_t port,
                                 const char* path, CUriParameterCollection* parameters,
                                 const char* fragment)
{
    RObject<CString> extra(BuildExtraInfoString(parameters, fragment));
    if (!extra)
        return nullptr;
    return Create(scheme, host, port, path, extra->GetChars());
}

bool CUriBuilder::SetScheme(const char* scheme) { return Assign(m_scheme, scheme); }
bool CUriBuilder::SetHost(const char* host) { return Assign(m_host, host); }
bool CUriBuilder::SetUserName(const char* userName) { return Assign(m_userName, userName); }
bool CUriBuilder::SetPassword(const char* password) { return Assign(m_password, password); }
bool CUriBuilder::SetPath(const char* path) { return Assign(m_path, path); }
bool CUriBuilder::SetExtraInfo(const char* extraInfo) { return Assign(m_extraInfo, extraInfo); }

CUri* CUriBuilder::GetUri(bool escape)
{
    if (m_scheme->GetLength() == 0) {
        Log(LogLevel::Warning, "CUriBuilder::GetUri: no scheme\n");
        return nullptr;
    }
    std::string url;
    try {
        url = m_scheme->GetChars();
        url += "://";
        if (m_userName->GetLength() > 0 || m_password->GetLength() > 0) {
            if (!Render(m_userName, escape, 0, url))
                return nullptr;
            if (m_password->GetLength() > 0) {
                url += ':';
                if (!Render(m_password, escape, 0, url))
                    return nullptr;
            }
            url += '@';
        }
        url += m_host->GetChars();
        if (m_port != 0 && m_port != DefaultPort(m_scheme))
            url += ':' + std::to_string(m_port);
        const char* path = m_path->GetChars();
        if (*path && *path != '/')
            url += '/';
        if (!Render(m_path, escape, CUri::EscapeKeepSlash, url))
            return nullptr;
        url += m_extraInfo->GetChars();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    if (url.size() >= Platform::UrlCapacity) {
        Log(LogLevel::Warning, "CUriBuilder::GetUri: URL of %llu characters is too long\n",
            (unsigned long long)url.size());
        return nullptr;
    }
    return CUri::CreateWithEscapedUrl(url.c_str());
}

CString* CUriBuilder::BuildExtraInfoString(CUriParameterCollection* parameters, const char* fragment)
{
    std::string extra;
    try {
        const int32_t count = parameters ? parameters->GetCount() : 0;
        for (int32_t i = 0; i < count; ++i) {
            CUriParameter* parameter = parameters->Get(i);
            extra += i == 0 ? '?' : '&';
            if (!AppendEscaped(extra, parameter->GetName()))
                return nullptr;
            extra += '=';
            if (!AppendEscaped(extra, parameter->GetValue()))
                return nullptr;
        }
        if (fragment && *fragment) {
            RObject<CString> text(CString::Create(fragment));
            extra += '#';
            if (!text || !AppendEscaped(extra, text))
                return nullptr;
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return CString::Create(extra.c_str(), int32_t(extra.size()));
}

} // namespace Quorvex::Vek
