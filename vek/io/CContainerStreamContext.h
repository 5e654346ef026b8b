#pragma once

// A context over one stream the caller already has (a host's own I/O, a
// memory stream). Every open hands out that same stream, so it serves
// only formats that live in a single file.
#include <vek/io/CContainerContext.h>

namespace Quorvex::Vek {

class VEK_API CContainerStreamContext : public CContainerContext {
public:
    enum : uint32_t { Type = Four("scxt") };

    // A new context sharing `stream`, optionally known by `name` (may be
    // null); null for a null stream or when out of memory.
    static CContainerStreamContext* Create(CStream* stream, CString* name = nullptr);

    // Borrowed: valid while the context lives.
    CStream* GetStream() const { return m_stream; }

    // The stream itself (one more reference) when `name` is empty, null or
    // one of the context's names; -19006 for any other file. Reader
    // settings do not apply: the caller chose the stream.
    int OpenStream(const ReaderSettings& reader, CString* name, CStream*& result) override;
    // Likewise; -19006 too when the stream cannot be written.
    int OpenStream(const WriterSettings& writer, CString* name, CStream*& result) override;

protected:
    CContainerStreamContext(CArray<CString>* names, CStream* stream);
    ~CContainerStreamContext() override;

private:
    int ShareStream(CString* name, CStream*& result);

    RObject<CStream> m_stream;
};

} // namespace Quorvex::Vek
