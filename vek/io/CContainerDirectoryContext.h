#pragma once

// A context over a directory: file names are resolved inside it. A name
// that is an absolute path is used as it is when the host listed it or
// allowed names outside the folder; otherwise OpenStream refuses it, as it
// refuses ".." (see CContainerContext). The usual context for a file named
// by path.
#include <vek/io/CContainerContext.h>

namespace Quorvex::Vek {

class VEK_API CContainerDirectoryContext : public CContainerContext {
public:
    enum : uint32_t { Type = Four("dcxt") };

    // A new context for the directory `path` (shared); null for a null
    // path or when out of memory.
    static CContainerDirectoryContext* Create(CString* path);
    // A context for the directory of `filePath` with that file as its
    // first name (a bare file name: the current folder); null for a null
    // or empty path.
    static CContainerDirectoryContext* CreateForFile(CString* filePath);

    // The directory, a new reference.
    CString* GetPath();

    // Stores a path inside the directory as its name relative to it.
    int AddFilePath(CString* path) override;
    CString* GetCurrentFilePath() override;

protected:
    CContainerDirectoryContext(CArray<CString>* names, CString* path);
    ~CContainerDirectoryContext() override;

    bool ConfinesNames() const override { return true; }
    CString* Resolve(CString* name) override;

private:
    RObject<CString> m_path;
};

} // namespace Quorvex::Vek
