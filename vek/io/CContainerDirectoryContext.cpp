#include <vek/io/CContainerDirectoryContext.h>

#include <vek/core/Result.h>
#include <vek/io/CStream.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek {

CContainerDirectoryContext::CContainerDirectoryContext(CArray<CString>* names, CString* path)
    : CContainerContext(Type, names), m_path(RObject<CString>::FromObject(path))
{
}

CContainerDirectoryContext::~CContainerDirectoryContext() = default;

CContainerDirectoryContext* CContainerDirectoryContext::Create(CString* path)
{
    if (!path)
        return nullptr;
    CArray<CString>* names = NewNameList();
    if (!names)
        return nullptr;
    auto* context = new (fallible) CContainerDirectoryContext(names, path);
    if (!context)
        names->Release();
    return context;
}

CContainerDirectoryContext* CContainerDirectoryContext::CreateForFile(CString* filePath)
{
    if (!filePath || !*filePath->GetChars())
        return nullptr;
    // A bare file name lies in the current folder.
    RObject<CString> directory(DirectoryOf(filePath));
    if (!directory)
        directory = RObject<CString>(CString::Create("./"));
    if (!directory)
        return nullptr;
    RObject<CContainerDirectoryContext> context(Create(directory));
    if (!context || context->AddFilePath(filePath) < 0)
        return nullptr;
    return context.Detach();
}

CString* CContainerDirectoryContext::GetPath()
{
    m_path->Acquire();
    return m_path;
}

int CContainerDirectoryContext::AddFilePath(CString* path)
{
    if (!path)
        return RESULT_ARGUMENT_NULL;
    const char* directory = m_path->GetChars();
    const size_t length = std::strlen(directory);
    const char* text = path->GetChars();
    // Inside the directory: keep the name relative so the list reads as
    // names, as AddFileName would have made it.
    if (length > 0 && std::strncmp(text, directory, length) == 0) {
        const char* rest = text + length;
        const char last = directory[length - 1];
        if (last != '/' && last != '\\' && (*rest == '/' || *rest == '\\'))
            ++rest;
        if (rest != text + length || last == '/' || last == '\\') {
            RObject<CString> name(CString::Create(rest));
            return name ? AddFileName(name) : RESULT_OUT_OF_MEMORY;
        }
    }
    return AddFileName(path);
}

CString* CContainerDirectoryContext::Resolve(CString* name)
{
    if (IsAbsolutePath(name->GetChars())) {
        name->Acquire();
        return name;
    }
    return JoinPath(m_path, name);
}

CString* CContainerDirectoryContext::GetCurrentFilePath()
{
    RObject<CString> name(GetCurrentFileName());
    return name ? Resolve(name) : nullptr;
}

} // namespace Quorvex::Vek
