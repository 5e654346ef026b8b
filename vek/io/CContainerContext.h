#pragma once

// Where a container reader or writer finds its file or files, and how it
// opens them. A context keeps a list of file names with a current one;
// each kind resolves names in its own way (inside a directory, as full
// paths, or onto one stream the caller gave) and opens them as CStreams.
//
// Strings passed in are shared (Acquired); strings returned are new
// references owned by the caller. Opened streams carry one reference for
// the caller.
#include <vek/core/CArray.h>
#include <vek/core/CString.h>

namespace Quorvex::Vek {

class CStream;
class CContainerReader;

class VEK_API CContainerContext : public CObject {
public:
    // What a reader asks of the files it opens: a block size for a
    // buffered stream in front of the file (below 1: no buffering) and how
    // long a read may wait for a growing file (0: not at all; at most
    // 3,600,000 ms).
    struct ReaderSettings {
        int32_t bufferSize = 0;
        int32_t readWaitTime = 0;
    };
    // Writers create (or truncate) their files, readable and writable by
    // the owner only. No settings yet; the type keeps the two opening
    // paths apart.
    struct WriterSettings {};

    // Number of blocks of the buffered stream put in front of a reader's file.
    static constexpr int32_t ReadBufferBlocks = 16;

    // Appends a name; -19004 for null.
    int AddFileName(CString* name);
    // Appends a file given by its full path; -19004 for null.
    virtual int AddFilePath(CString* path);
    // Advances to the next name; false (staying put) at the last one.
    bool MoveNextFile();
    // Back to the first name.
    void ResetFiles();
    int32_t GetFileCount() const { return m_names->GetCount(); }
    // The current name; null when the list is empty.
    CString* GetCurrentFileName();
    // The full path of the current file; null when there is none.
    virtual CString* GetCurrentFilePath();

    // Names given to OpenStream usually come from inside a media file (a
    // reference to a side-car or essence file), so directory and multi-file
    // contexts refuse one that would leave their folder: an absolute path,
    // a drive letter, a UNC or root-relative path, or a ".." segment
    // (slash or backslash separated; a segment of only dots and spaces
    // with two dots or more counts as one, since Windows trims it to ".."),
    // on every build alike. Names the host
    // put in the file list are exempt. A host that wants references to go
    // anywhere says so here; off by default.
    void SetAllowNamesOutsideFolder(bool allow) { m_allowOutsideFolder = allow; }
    bool GetAllowNamesOutsideFolder() const { return m_allowOutsideFolder; }
    // True when `name` would reach outside the folder it is resolved in.
    static bool EscapesFolder(const char* name);

    // Opens `name` for a reader: -19004 for a null name, -19102
    // (RESULT_ACCESS_DENIED) for a name outside the folder (see above), the
    // open's code on failure, otherwise 0 with the stream in `result`.
    // File-based contexts open the path that Resolve makes of the name.
    virtual int OpenStream(const ReaderSettings& reader, CString* name, CStream*& result);
    // Opens `name` for `reader` as it asks: behind a buffered stream of
    // ReadBufferBlocks blocks of its block size when it has one, reads
    // waiting for a growing file as long as its read timeout says.
    int OpenStream(CContainerReader* reader, CString* name, CStream*& result);
    // Opens `name` for a writer, likewise.
    virtual int OpenStream(const WriterSettings& writer, CString* name, CStream*& result);

protected:
    CContainerContext(uint32_t type, CArray<CString>* names);
    ~CContainerContext() override;

    // Makes the array every context starts with; null when out of memory.
    static CArray<CString>* NewNameList();

    // True for contexts that resolve names inside a folder and so refuse
    // names that leave it. The base takes names as they are.
    virtual bool ConfinesNames() const { return false; }

    // The file path a name stands for in this context: a new reference,
    // or null when out of memory. The base takes the name as it is.
    virtual CString* Resolve(CString* name);

    // A file opened for reading as the settings ask, wrapped in a buffered
    // stream of ReadBufferBlocks blocks when bufferSize is 1 or more.
    static int OpenForReading(CString* path, const ReaderSettings& reader, CStream*& result);
    // A file created or truncated for writing (and reading back).
    static int OpenForWriting(CString* path, CStream*& result);

    // True for "/x", "\x", "\\server\x" and "C:\x" or "C:/x".
    static bool IsAbsolutePath(const char* path);
    // `directory` and `name` joined with one separator (a backslash when
    // the directory already uses them, else a slash). New string or null.
    static CString* JoinPath(CString* directory, CString* name);
    // The directory part of `path` (up to its last separator), or null.
    static CString* DirectoryOf(CString* path);

    RObject<CArray<CString>> m_names;
    int32_t m_current = 0;

private:
    // RESULT_OK, or RESULT_ACCESS_DENIED (logged) for a name this context
    // must not open.
    int Admit(const char* member, CString* name);
    bool IsListed(CString* name);

    bool m_allowOutsideFolder = false;
};

} // namespace Quorvex::Vek
