#pragma once

// The parameters of a URI query in their order of appearance.
//
// Parsing: the text is split at '&'; each piece at its first '=' into name
// and value (no '=' gives an empty value); '+' means a space and %hh
// escapes are decoded in both (a malformed escape is kept as written);
// empty pieces and pieces with an empty name are skipped. Duplicate names
// are all kept; lookups by name answer with the first (names compare
// ignoring case).
#include <vek/core/CArray.h>
#include <vek/io/CUriParameter.h>

namespace Quorvex::Vek {

class CString;
class CUri;

class VEK_API CUriParameterCollection : public CObject {
public:
    enum : uint32_t { Type = Four("uprc") };

    // A new empty collection owned by the caller, or null.
    static CUriParameterCollection* Create();
    // The parameters of the URI's query; null for a null URI, a URI that
    // cannot be cracked, or when out of memory.
    static CUriParameterCollection* CreateWithUri(CUri* uri);

    // Results: 0, RESULT_ARGUMENT_NULL (-19004) for a null argument,
    // RESULT_OUT_OF_MEMORY (-19002), or the array's own failure codes.
    int Add(CUriParameter* parameter); // shared (Acquired)
    int Add(const char* name, const char* value);
    // A single "name=value" text, decoded as in a query.
    int Add(const char* nameValue);
    // Every pair of "a=1&b=2".
    int AddParameters(CString* parameters);
    // A query as it follows a URL: a leading '?' is skipped and a '#' ends it.
    int AddQuery(CString* query);

    int32_t GetCount() const { return m_parameters->GetCount(); }
    // Borrowed, valid while the collection holds the parameter; null when
    // out of range or absent.
    CUriParameter* Get(int32_t index) const;
    CUriParameter* Get(const char* name) const;
    CString* GetValue(const char* name) const;

protected:
    explicit CUriParameterCollection(CArray<CUriParameter>* parameters);
    ~CUriParameterCollection() override;

private:
    int AddPiece(const char* piece, size_t length);

    RObject<CArray<CUriParameter>> m_parameters;
};

} // namespace Quorvex::Vek
