#include <vek/io/CUriParameterCollection.h>

#include <vek/core/CString.h>
#include <vek/core/Result.h>
#include <vek/io/CUri.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek {

namespace {

// Decoded as a form value: '+' is a space, malformed escapes stay.
CString* DecodeText(const char* text, size_t length)
{
    RObject<CString> raw(CString::Create(text, int32_t(length)));
    return raw ? CUri::UniformResourceLabelUnEscape(raw) : nullptr;
}

} // namespace

CUriParameterCollection::CUriParameterCollection(CArray<CUriParameter>* parameters)
    : CObject(Type), m_parameters(parameters)
{
}

CUriParameterCollection::~CUriParameterCollection() = default;

CUriParameterCollection* CUriParameterCollection::Create()
{
    CArray<CUriParameter>* parameters = CArray<CUriParameter>::Create();
    if (!parameters)
        return nullptr;
    auto* collection = new (fallible) CUriParameterCollection(parameters);
    if (!collection)
        parameters->Release();
    return collection;
}

CUriParameterCollection* CUriParameterCollection::CreateWithUri(CUri* uri)
{
    if (!uri)
        return nullptr;
    RObject<CString> query(uri->GetQuery());
    if (!query)
        return nullptr;
    RObject<CUriParameterCollection> collection(Create());
    if (!collection || collection->AddParameters(query) < 0)
        return nullptr;
    return collection.Detach();
}

int CUriParameterCollection::Add(CUriParameter* parameter)
{
    if (!parameter)
        return RESULT_ARGUMENT_NULL;
    return m_parameters->Add(parameter);
}

int CUriParameterCollection::Add(const char* name, const char* value)
{
    if (!name)
        return RESULT_ARGUMENT_NULL;
    RObject<CUriParameter> parameter(CUriParameter::Create(name, value));
    if (!parameter)
        return RESULT_OUT_OF_MEMORY;
    return m_parameters->Add(parameter);
}

int CUriParameterCollection::Add(const char* nameValue)
{
    if (!nameValue)
        return RESULT_ARGUMENT_NULL;
    return AddPiece(nameValue, std::strlen(nameValue));
}

int CUriParameterCollection::AddPiece(const char* piece, size_t length)
{
    const char* equals = static_cast<const char*>(std::memchr(piece, '=', length));
    const size_t nameLength = equals ? size_t(equals - piece) : length;
    if (nameLength == 0)
        return RESULT_OK;
    RObject<CString> name(DecodeText(piece, nameLength));
    RObject<CString> value(equals ? DecodeText(equals + 1, length - nameLength - 1)
                                    : new (fallible) CString());
    if (!name || !value)
        return RESULT_OUT_OF_MEMORY;
    RObject<CUriParameter> parameter(CUriParameter::Create(name, value));
    if (!parameter)
        return RESULT_OUT_OF_MEMORY;
    return m_parameters->Add(parameter);
}

int CUriParameterCollection::AddParameters(CString* parameters)
{
    if (!parameters)
        return RESULT_ARGUMENT_NULL;
    const char* text = parameters->GetChars();
    while (*text) {
        const size_t length = std::strcspn(text, "&");
        const int result = AddPiece(text, length);
        if (result < 0)
            return result;
        text += length;
        if (*text == '&')
            ++text;
    }
    return RESULT_OK;
}

int CUriParameterCollection::AddQuery(CString* query)
{
    if (!query)
        return RESULT_ARGUMENT_NULL;
    const char* text = query->GetChars();
    if (*text == '?')
        ++text;
    RObject<CString> pairs(CString::Create(text, int32_t(std::strcspn(text, "#"))));
    if (!pairs)
        return RESULT_OUT_OF_MEMORY;
    return AddParameters(pairs);
}

CUriParameter* CUriParameterCollection::Get(int32_t index) const
{
    return m_parameters->Get(index);
}

CUriParameter* CUriParameterCollection::Get(const char* name) const
{
    if (!name)
        return nullptr;
    for (int32_t i = 0; i < m_parameters->GetCount(); ++i) {
        CUriParameter* parameter = m_parameters->Get(i);
        if (parameter && parameter->Equals(name))
            return parameter;
    }
    return nullptr;
}

CString* CUriParameterCollection::GetValue(const char* name) const
{
    CUriParameter* parameter = Get(name);
    return parameter ? parameter->GetValue() : nullptr;
}

} // namespace Quorvex::Vek
