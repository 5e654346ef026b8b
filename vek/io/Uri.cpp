#include <vek/io/Uri.h>

namespace Quorvex::Vek {

Uri Uri::FromObject(CUri* uri)
{
    if (uri)
        uri->Acquire();
    return Uri(uri);
}

Uri Uri::CreateWithUrl(const char* url) { return Uri(CUri::CreateWithUrl(url)); }
Uri Uri::CreateWithEscapedUrl(const char* url) { return Uri(CUri::CreateWithEscapedUrl(url)); }
Uri Uri::CreateWithLocalPath(const char* path) { return Uri(CUri::CreateWithLocalPath(path)); }

Uri Uri::CreateWithRelativeUrl(const Uri& base, const char* relative)
{
    return Uri(CUri::CreateWithRelativeUrl(base.ToObject(), relative));
}

#define VEK_URI_TEXT(Member)                                                                       \
    String Uri::Member() const                                                                     \
    {                                                                                              \
        CUri* uri = ToObject();                                                                    \
        return String(uri ? uri->Member() : nullptr);                                              \
    }

VEK_URI_TEXT(GetScheme)
VEK_URI_TEXT(GetHost)
VEK_URI_TEXT(GetUserName)
VEK_URI_TEXT(GetPassword)
VEK_URI_TEXT(GetPath)
VEK_URI_TEXT(GetExtraInfo)
VEK_URI_TEXT(GetQuery)
VEK_URI_TEXT(GetFragment)
VEK_URI_TEXT(GetLastPathComponent)
VEK_URI_TEXT(GetPathExtension)
VEK_URI_TEXT(GetLocalPath)
VEK_URI_TEXT(GetAbsoluteUri)

#undef VEK_URI_TEXT

uint16_t Uri::GetPort() const
{
    return ToObject() ? ToObject()->GetPort() : 0;
}

bool Uri::IsFile() const
{
    return ToObject() && ToObject()->IsFile();
}

bool Uri::IsUnc() const
{
    return ToObject() && ToObject()->IsUnc();
}

bool Uri::IsScheme(const char* scheme) const
{
    return ToObject() && ToObject()->IsScheme(scheme);
}

bool Uri::IsAbsoluteUri() const
{
    return ToObject() && ToObject()->IsAbsoluteUri();
}

} // namespace Quorvex::Vek
