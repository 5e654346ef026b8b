#include <vek/io/CContainerStreamContext.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/CStream.h>

#include <new>

namespace Quorvex::Vek {

CContainerStreamContext::CContainerStreamContext(CArray<CString>* names, CStream* stream)
    : CContainerContext(Type, names), m_stream(RObject<CStream>::FromObject(stream))
{
}

CContainerStreamContext::~CContainerStreamContext() = default;

CContainerStreamContext* CContainerStreamContext::Create(CStream* stream, CString* name)
{
    if (!stream)
        return nullptr;
    CArray<CString>* names = NewNameList();
    if (!names)
        return nullptr;
    RObject<CContainerStreamContext> context(new (fallible) CContainerStreamContext(names, stream));
    if (!context) {
        names->Release();
        return nullptr;
    }
    if (name && context->AddFileName(name) < 0)
        return nullptr;
    return context.Detach();
}

int CContainerStreamContext::ShareStream(CString* name, CStream*& result)
{
    bool known = !name || name->GetLength() == 0;
    for (int32_t i = 0; !known && i < m_names->GetCount(); ++i)
        known = name->Equals(m_names->Get(i));
    if (!known) {
        Log(LogLevel::Error, "CContainerStreamContext::OpenStream: only the context's own stream can be opened\n");
        return RESULT_NOT_SUPPORTED;
    }
    m_stream->Acquire();
    result = m_stream;
    return RESULT_OK;
}

int CContainerStreamContext::OpenStream(const ReaderSettings&, CString* name, CStream*& result)
{
    return ShareStream(name, result);
}

int CContainerStreamContext::OpenStream(const WriterSettings&, CString* name, CStream*& result)
{
    if (!m_stream->CanWrite()) {
        Log(LogLevel::Error, "CContainerStreamContext::OpenStream: the stream cannot be written\n");
        return RESULT_NOT_SUPPORTED;
    }
    return ShareStream(name, result);
}

} // namespace Quorvex::Vek
