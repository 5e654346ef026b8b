#include <vek/io/CContainerMultiFileContext.h>

#include <vek/core/Result.h>
#include <vek/io/CStream.h>

#include <new>

namespace Quorvex::Vek {

using CMultiFileCtxInfo = CContainerMultiFileContext::CMultiFileCtxInfo;

CMultiFileCtxInfo::CMultiFileCtxInfo(CString* fileName, unsigned int kind)
    : CObject(Type), m_fileName(RObject<CString>::FromObject(fileName)), m_kind(kind)
{
}

CMultiFileCtxInfo::~CMultiFileCtxInfo() = default;

CMultiFileCtxInfo* CMultiFileCtxInfo::Create(CString* fileName, unsigned int kind)
{
    if (!fileName)
        return nullptr;
    return new (fallible) CMultiFileCtxInfo(fileName, kind);
}

CContainerMultiFileContext::CContainerMultiFileContext(CArray<CString>* names,
                                                       CArray<CMultiFileCtxInfo>* entries)
    : CContainerContext(Type, names), m_entries(entries)
{
}

CContainerMultiFileContext::~CContainerMultiFileContext() = default;

CContainerMultiFileContext* CContainerMultiFileContext::Create()
{
    RObject<CArray<CString>> names(NewNameList());
    RObject<CArray<CMultiFileCtxInfo>> entries(CArray<CMultiFileCtxInfo>::Create());
    if (!names || !entries)
        return nullptr;
    auto* context = new (fallible) CContainerMultiFileContext(names, entries);
    if (!context)
        return nullptr;
    names.Detach();
    entries.Detach();
    return context;
}

int CContainerMultiFileContext::AddFullFileName(CString* fileName, unsigned int kind)
{
    if (!fileName)
        return RESULT_ARGUMENT_NULL;
    RObject<CMultiFileCtxInfo> info(CMultiFileCtxInfo::Create(fileName, kind));
    if (!info)
        return RESULT_OUT_OF_MEMORY;
    int status = m_entries->Add(info);
    if (status < 0)
        return status;
    status = AddFileName(fileName);
    if (status < 0)
        m_entries->RemoveAt(m_entries->GetCount() - 1);
    return status;
}

int CContainerMultiFileContext::AddFilePath(CString* path)
{
    return AddFullFileName(path, CMultiFileCtxInfo::Unknown);
}

CArray<CMultiFileCtxInfo>* CContainerMultiFileContext::GetContextTypeList()
{
    RObject<CArray<CMultiFileCtxInfo>> list(CArray<CMultiFileCtxInfo>::Create(m_entries->GetCount()));
    if (!list)
        return nullptr;
    for (int32_t i = 0; i < m_entries->GetCount(); ++i)
        if (list->Add(m_entries->Get(i)) < 0)
            return nullptr;
    return list.Detach();
}

bool CContainerMultiFileContext::GetFirstCtxInfoOfType(unsigned int kind, CMultiFileCtxInfo*& info)
{
    info = nullptr;
    for (int32_t i = 0; i < m_entries->GetCount(); ++i) {
        CMultiFileCtxInfo* entry = m_entries->Get(i);
        if (entry && entry->GetKind() == kind) {
            entry->Acquire();
            info = entry;
            return true;
        }
    }
    return false;
}

CString* CContainerMultiFileContext::Resolve(CString* name)
{
    if (IsAbsolutePath(name->GetChars())) {
        name->Acquire();
        return name;
    }
    RObject<CString> current(GetCurrentFileName());
    RObject<CString> directory(DirectoryOf(current));
    if (!directory) {
        name->Acquire();
        return name;
    }
    return JoinPath(directory, name);
}

} // namespace Quorvex::Vek
