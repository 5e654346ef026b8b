#include <vek/io/ContainerContext.h>

#include <vek/core/Result.h>
#include <vek/io/CContainerDirectoryContext.h>
#include <vek/io/CContainerMultiFileContext.h>
#include <vek/io/CContainerStreamContext.h>

#include <new>

namespace Quorvex::Vek {

namespace {

RObject<CString> NewText(const char* text)
{
    return RObject<CString>(text ? CString::Create(text) : nullptr);
}

} // namespace

ContainerContext ContainerContext::FromObject(CContainerContext* context)
{
    if (context)
        context->Acquire();
    return ContainerContext(context);
}

ContainerContext ContainerContext::CreateForStream(const Stream& stream, const char* name)
{
    RObject<CString> text(NewText(name));
    if (name && !text)
        return ContainerContext();
    return ContainerContext(CContainerStreamContext::Create(stream.ToObject(), text));
}

ContainerContext ContainerContext::CreateForDirectory(const char* directory)
{
    RObject<CString> text(NewText(directory));
    return ContainerContext(text ? CContainerDirectoryContext::Create(text) : nullptr);
}

ContainerContext ContainerContext::CreateForFile(const char* filePath)
{
    RObject<CString> text(NewText(filePath));
    return ContainerContext(text ? CContainerDirectoryContext::CreateForFile(text) : nullptr);
}

ContainerContext ContainerContext::CreateForFiles()
{
    return ContainerContext(CContainerMultiFileContext::Create());
}

int ContainerContext::AddFileName(const char* name) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    return ToObject()->AddFileName(NewText(name));
}

int ContainerContext::AddFilePath(const char* path) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    return ToObject()->AddFilePath(NewText(path));
}

int ContainerContext::AddFullFileName(const char* path, unsigned int kind) const
{
    CContainerContext* context = ToObject();
    if (!context)
        return RESULT_NULL_POINTER;
    if (!context->IsType(CContainerMultiFileContext::Type))
        return RESULT_TYPE_MISMATCH;
    return static_cast<CContainerMultiFileContext*>(context)->AddFullFileName(NewText(path), kind);
}

void ContainerContext::SetAllowNamesOutsideFolder(bool allow) const
{
    if (ToObject())
        ToObject()->SetAllowNamesOutsideFolder(allow);
}

bool ContainerContext::MoveNextFile() const
{
    return ToObject() && ToObject()->MoveNextFile();
}

void ContainerContext::ResetFiles() const
{
    if (ToObject())
        ToObject()->ResetFiles();
}

String ContainerContext::GetCurrentFileName() const
{
    return String(ToObject() ? ToObject()->GetCurrentFileName() : nullptr);
}

String ContainerContext::GetCurrentFilePath() const
{
    return String(ToObject() ? ToObject()->GetCurrentFilePath() : nullptr);
}

int ContainerContext::OpenReadStream(const char* name, int32_t bufferSize, int32_t readWaitTime,
                                     Stream& result) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CContainerContext::ReaderSettings settings;
    settings.bufferSize = bufferSize;
    settings.readWaitTime = readWaitTime;
    CStream* stream = nullptr;
    const int status = ToObject()->OpenStream(settings, NewText(name), stream);
    if (status >= 0)
        result = Stream(stream);
    return status;
}

int ContainerContext::OpenWriteStream(const char* name, Stream& result) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CStream* stream = nullptr;
    const int status = ToObject()->OpenStream(CContainerContext::WriterSettings{}, NewText(name), stream);
    if (status >= 0)
        result = Stream(stream);
    return status;
}

} // namespace Quorvex::Vek
