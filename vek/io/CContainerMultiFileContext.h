#pragma once

// A context over a list of files named by full path, each tagged with the
// kind of content it holds (for example the separate essence files of an
// MXF OP-Atom package, or a video file with side-car captions). Relative
// names are resolved against the directory of the current file; names
// that leave it are refused unless listed or allowed (see
// CContainerContext).
#include <vek/io/CContainerContext.h>

namespace Quorvex::Vek {

class VEK_API CContainerMultiFileContext : public CContainerContext {
public:
    enum : uint32_t { Type = Four("mcxt") };

    // One entry: a full file name and the kind of content it holds.
    class VEK_API CMultiFileCtxInfo : public CObject {
    public:
        enum : uint32_t { Type = Four("mcxi") };

        // Kinds used by the library's readers; any other code may be used
        // between a host and a reader that agree on it.
        // (Enumerators, so that a host comparing them by reference needs no
        // exported object.)
        enum Kind : unsigned int {
            Unknown = 0,
            Video = Four("vide"),
            Audio = Four("soun"),
            Subtitle = Four("sbtl"),
            Metadata = Four("meta"),
            Index = Four("indx"),
        };

        // Shares `fileName`; null for a null name or when out of memory.
        static CMultiFileCtxInfo* Create(CString* fileName, unsigned int kind);

        // Borrowed: valid while the entry lives.
        CString* GetFileName() const { return m_fileName; }
        unsigned int GetKind() const { return m_kind; }

    protected:
        CMultiFileCtxInfo(CString* fileName, unsigned int kind);
        ~CMultiFileCtxInfo() override;

    private:
        RObject<CString> m_fileName;
        unsigned int m_kind;
    };

    // A new empty context, or null.
    static CContainerMultiFileContext* Create();

    // Appends an entry and its name to the file list; -19004 for null.
    int AddFullFileName(CString* fileName, unsigned int kind);
    // AddFullFileName with kind Unknown.
    int AddFilePath(CString* path) override;
    // A new array (owned by the caller) sharing every entry in the order
    // added; null when out of memory.
    CArray<CMultiFileCtxInfo>* GetContextTypeList();
    // The first entry of `kind` with a new reference in `info`; false
    // (and `info` null) when there is none.
    bool GetFirstCtxInfoOfType(unsigned int kind, CMultiFileCtxInfo*& info);

protected:
    CContainerMultiFileContext(CArray<CString>* names, CArray<CMultiFileCtxInfo>* entries);
    ~CContainerMultiFileContext() override;

    bool ConfinesNames() const override { return true; }
    CString* Resolve(CString* name) override;

private:
    RObject<CArray<CMultiFileCtxInfo>> m_entries;
};

} // namespace Quorvex::Vek
