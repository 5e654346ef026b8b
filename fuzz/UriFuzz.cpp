// URI parsing, escaping and combination on arbitrary text: nothing may
// crash or overflow, whatever the length or the escapes (a '%' with fewer
// than two hexadecimal digits included), and the escaping functions must
// keep their round-trip promises.
#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>
#include <vek/io/CDataUri.h>
#include <vek/io/CUri.h>
#include <vek/io/CUriBuilder.h>
#include <vek/io/CUriParameterCollection.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace Quorvex::Vek;

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

void Drop(CObject* object)
{
    if (object)
        object->Release();
}

void QueryEverything(CUri* uri)
{
    Drop(uri->GetScheme());
    Drop(uri->GetHost());
    (void)uri->GetPort();
    Drop(uri->GetUserName());
    Drop(uri->GetPassword());
    Drop(uri->GetPath());
    Drop(uri->GetExtraInfo());
    Drop(uri->GetQuery());
    Drop(uri->GetFragment());
    Drop(uri->GetLastPathComponent());
    Drop(uri->GetPathExtension());
    Drop(uri->GetLocalPath());
    Drop(uri->GetPathAndExtraInfo());
    (void)uri->IsFile();
    (void)uri->IsUnc();
    (void)uri->IsAbsoluteUri();
    (void)uri->IsScheme(CUri::UriSchemeHttp);
}

void CheckEscaping(CString* text)
{
    // Escaping leaves no reserved byte behind, and unescaping restores the text.
    RObject<CString> escaped(CUri::EscapeDataString(text, 0));
    if (!escaped)
        return;
    for (const char* p = escaped->GetChars(); *p; ++p)
        Require(!CUri::IsReserved(*p));
    RObject<CString> restored(CUri::UnescapeDataString(escaped));
    if (restored && !std::strchr(text->GetChars(), '%'))
        Require(std::strcmp(restored->GetChars(), text->GetChars()) == 0);
    Drop(CUri::UnescapeDataString(text));
    Drop(CUri::UniformResourceLabelUnEscape(text));
    CString* query = nullptr;
    CString* fragment = nullptr;
    CUri::CrackExtraInfo(text, query, fragment);
    Drop(query);
    Drop(fragment);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // First byte splits the input into a base and a relative reference.
    const size_t split = size ? size_t(data[0]) * (size - 1) / 255 + 1 : 0;
    const std::string whole(reinterpret_cast<const char*>(data), size);
    const std::string first = size ? whole.substr(1, split - 1) : std::string();
    const std::string second = size ? whole.substr(split) : std::string();
    const std::string text = size ? whole.substr(1) : std::string();

    RObject<CString> string(new CString(text.c_str()));
    CheckEscaping(string);

    RObject<CUri> escaped(CUri::CreateWithEscapedUrl(text.c_str()));
    if (escaped)
        QueryEverything(escaped);
    RObject<CUri> normalised(CUri::CreateWithUrl(text.c_str()));
    if (normalised)
        QueryEverything(normalised);
    RObject<CUri> local(CUri::CreateWithLocalPath(text.c_str()));
    if (local)
        QueryEverything(local);

    RObject<CUri> base(CUri::CreateWithEscapedUrl(first.c_str()));
    RObject<CUri> combined(CUri::CreateWithRelativeUrl(base, second.c_str()));
    if (combined)
        QueryEverything(combined);

    RObject<CUriParameterCollection> parameters(CUriParameterCollection::Create());
    if (parameters) {
        parameters->AddQuery(string);
        RObject<CString> extra(CUriBuilder::BuildExtraInfoString(parameters, second.c_str()));
        RObject<CUriBuilder> builder(CUriBuilder::Create(escaped));
        if (builder)
            Drop(builder->GetUri(true));
    }

    RObject<CDataUri> dataUri(CDataUri::CreateWithDataUri(text.c_str()));
    if (dataUri) {
        Drop(dataUri->GetMediaType());
        Drop(dataUri->GetData());
    }
    return 0;
}
