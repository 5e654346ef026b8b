#include <vek/io/CContainerContext.h>

#include <vek/containers/CContainerReader.h>
#include <vek/core/CharClass.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CFileDescriptorStream.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek {

CContainerContext::CContainerContext(uint32_t type, CArray<CString>* names)
    : CObject(type), m_names(names)
{
}

CContainerContext::~CContainerContext() = default;

CArray<CString>* CContainerContext::NewNameList()
{
    return CArray<CString>::Create();
}

int CContainerContext::AddFileName(CString* name)
{
    if (!name)
        return RESULT_ARGUMENT_NULL;
    return m_names->Add(name);
}

int CContainerContext::AddFilePath(CString* path)
{
    return AddFileName(path);
}

bool CContainerContext::MoveNextFile()
{
    if (m_current + 1 >= m_names->GetCount())
        return false;
    ++m_current;
    return true;
}

void CContainerContext::ResetFiles()
{
    m_current = 0;
}

CString* CContainerContext::GetCurrentFileName()
{
    CString* name = m_names->Get(m_current);
    if (name)
        name->Acquire();
    return name;
}

CString* CContainerContext::GetCurrentFilePath()
{
    return GetCurrentFileName();
}

int CContainerContext::OpenForReading(CString* path, const ReaderSettings& reader, CStream*& result)
{
    RObject<CFileDescriptorStream> file(new (fallible) CFileDescriptorStream(FileStream::FileMode::Read));
    if (!file)
        return RESULT_OUT_OF_MEMORY;
    int status = file->Open(path);
    if (status < 0)
        return status;
    if (reader.readWaitTime > 0) {
        status = file->SetReadWaitTime(reader.readWaitTime);
        if (status < 0) {
            Log(LogLevel::Error, "CContainerContext::OpenForReading: read wait time %d ms is out of range\n",
                reader.readWaitTime);
            return status;
        }
    }
    if (reader.bufferSize < 1) {
        result = file.Detach();
        return RESULT_OK;
    }
    CBufferedStream* buffered = new (fallible) CBufferedStream(file, reader.bufferSize, ReadBufferBlocks);
    if (!buffered)
        return RESULT_OUT_OF_MEMORY;
    result = buffered;
    return RESULT_OK;
}

int CContainerContext::OpenForWriting(CString* path, CStream*& result)
{
    RObject<CFileDescriptorStream> file(new (fallible) CFileDescriptorStream(FileStream::FileMode::ReadWrite));
    if (!file)
        return RESULT_OUT_OF_MEMORY;
    const int status = file->Open(path);
    if (status < 0)
        return status;
    result = file.Detach();
    return RESULT_OK;
}

bool CContainerContext::IsAbsolutePath(const char* path)
{
    if (!path || !*path)
        return false;
    if (path[0] == '/' || path[0] == '\\')
        return true;
    const bool letter = CharClass::IsAsciiLetter(path[0]);
    return letter && path[1] == ':' && (path[2] == '/' || path[2] == '\\');
}

CString* CContainerContext::JoinPath(CString* directory, CString* name)
{
    if (!directory || !name)
        return nullptr;
    const char* dir = directory->GetChars();
    const size_t length = std::strlen(dir);
    if (length == 0) {
        name->Acquire();
        return name;
    }
    const char last = dir[length - 1];
    if (last == '/' || last == '\\')
        return CString::Concat(directory, name);
    RObject<CString> withSeparator(directory->Append(std::strchr(dir, '\\') ? '\\' : '/'));
    return withSeparator ? CString::Concat(withSeparator, name) : nullptr;
}

CString* CContainerContext::DirectoryOf(CString* path)
{
    if (!path)
        return nullptr;
    const char* text = path->GetChars();
    const char* slash = std::strrchr(text, '/');
    const char* backslash = std::strrchr(text, '\\');
    const char* last = slash > backslash ? slash : backslash;
    if (!last)
        return nullptr;
    return CString::Create(text, int32_t(last - text + 1));
}

bool CContainerContext::EscapesFolder(const char* name)
{
    if (!name)
        return false;
    // A drive letter, with or without a separator after it ("C:x" is
    // relative to the current folder of drive C).
    const bool letter = CharClass::IsAsciiLetter(name[0]);
    if (IsAbsolutePath(name) || (letter && name[1] == ':'))
        return true;
    // A ".." segment anywhere; both separators count, as the same name
    // must be refused by every build. Windows drops the dots and spaces
    // that end a segment (".. " and "..." reach the parent or the folder
    // itself), so any segment of only dots and spaces with two dots or
    // more counts as "..".
    for (const char* segment = name;;) {
        const size_t length = std::strcspn(segment, "/\\");
        size_t dots = 0;
        size_t i = 0;
        for (; i < length && (segment[i] == '.' || segment[i] == ' '); ++i)
            dots += segment[i] == '.';
        if (i == length && dots >= 2)
            return true;
        if (segment[length] == 0)
            return false;
        segment += length + 1;
    }
}

bool CContainerContext::IsListed(CString* name)
{
    for (int32_t i = 0; i < m_names->GetCount(); ++i)
        if (CString::Equals(m_names->Get(i), name))
            return true;
    return false;
}

int CContainerContext::Admit(const char* member, CString* name)
{
    if (!ConfinesNames() || m_allowOutsideFolder || !EscapesFolder(name->GetChars()) || IsListed(name))
        return RESULT_OK;
    // The name is untrusted: show it without control bytes, and not
    // without end.
    const char* text = name->GetChars();
    char shown[257];
    size_t n = 0;
    for (; text[n] && n + 1 < sizeof shown; ++n)
        shown[n] = (uint8_t(text[n]) < 0x20 || text[n] == 0x7F) ? '?' : text[n];
    shown[n] = 0;
    Log(LogLevel::Error, "CContainerContext::%s: name \"%s\"%s leaves the context's folder\n", member, shown,
        text[n] ? "..." : "");
    return RESULT_ACCESS_DENIED;
}

CString* CContainerContext::Resolve(CString* name)
{
    name->Acquire();
    return name;
}

int CContainerContext::OpenStream(const ReaderSettings& reader, CString* name, CStream*& result)
{
    if (!name)
        return RESULT_ARGUMENT_NULL;
    const int admitted = Admit("OpenStream", name);
    if (admitted < 0)
        return admitted;
    RObject<CString> path(Resolve(name));
    if (!path)
        return RESULT_OUT_OF_MEMORY;
    return OpenForReading(path, reader, result);
}

int CContainerContext::OpenStream(CContainerReader* reader, CString* name, CStream*& result)
{
    if (!reader)
        return RESULT_ARGUMENT_NULL;
    ReaderSettings settings;
    settings.bufferSize = reader->GetStreamBlockSize();
    settings.readWaitTime = reader->GetReadTimeout();
    return OpenStream(settings, name, result);
}

int CContainerContext::OpenStream(const WriterSettings&, CString* name, CStream*& result)
{
    if (!name)
        return RESULT_ARGUMENT_NULL;
    const int admitted = Admit("OpenStream", name);
    if (admitted < 0)
        return admitted;
    RObject<CString> path(Resolve(name));
    if (!path)
        return RESULT_OUT_OF_MEMORY;
    return OpenForWriting(path, result);
}

} // namespace Quorvex::Vek
