#pragma once

// A "data:" URI (media type, optional ";base64", a comma, then the data),
// for media and side data carried inline instead of in a file. Shares
// CUri's layout: the URI text is the only state and is parsed on demand.
#include <vek/io/CUri.h>

namespace Quorvex::Vek {

class CByteArray;

class VEK_API CDataUri : public CUri {
public:
    enum : uint32_t { Type = Four("duri") };

    // A new data URI owned by the caller; null when the text is not a
    // data URI, lacks the comma, or its data cannot be decoded.
    static CDataUri* CreateWithDataUri(const char* text);
    static CDataUri* CreateWithDataUri(CString* text);

    // The media type with its parameters but without ";base64";
    // "text/plain;charset=US-ASCII" when none is given. New string.
    CString* GetMediaType();
    // The decoded bytes in a new array owned by the caller; null on failure.
    CByteArray* GetData();
    // Compares the type/subtype (parameters ignored), ignoring case.
    bool IsMediaType(const char* mediaType);

protected:
    explicit CDataUri(CString* text);
    ~CDataUri() override;
};

} // namespace Quorvex::Vek
