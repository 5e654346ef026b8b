#pragma once

// Descriptor-based file input/output for the file streams: the C runtime's
// _wopen/_read/_write/_lseeki64/_commit/_close on Windows, the POSIX calls
// elsewhere. Failures come back as a portable error kind so that code above
// this layer never compares raw error numbers, which differ per platform.
#include <cstdint>

namespace Quorvex::Vek::Platform {

enum class FileErrorKind {
    None,
    NoEntry,      // ENOENT, ENOTDIR
    AccessDenied, // EACCES
    Exists,       // EEXIST
    IsDirectory,  // EISDIR
    NoSpace,      // ENOSPC
    NameTooLong,  // ENAMETOOLONG
    NoMemory,     // ENOMEM
    Other,
};

struct FileError {
    FileErrorKind kind = FileErrorKind::None;
    // The platform's own error number, for "Unknown error: %d" log lines only.
    int number = 0;
};

// The kind of a C runtime error number (errno), matched by symbolic name.
FileError FileErrorFromNumber(int number);

// How a file is opened. Every mode is binary; created files get read and
// write permission for the owner only; descriptors are not inherited by
// child processes.
enum class FileOpenMode {
    Read,            // read-only
    Write,           // write-only, create, truncate
    ReadWrite,       // read-write, create, truncate
    Append,          // write-only, create, append
    AppendReadWrite, // read-write, create, append
};

enum class FileSeekOrigin { Begin = 0, Current = 1, End = 2 };

constexpr int kInvalidFileDescriptor = -1;

// Opens a file named by a UTF-8 path. Returns the descriptor, or -1 with
// `error` filled. A directory is refused with IsDirectory on every platform.
int FileOpen(const char* utf8Path, FileOpenMode mode, FileError& error);

// Reads up to `count` bytes; returns the count read (0 at the end), or -1.
int32_t FileRead(int descriptor, void* buffer, int32_t count, FileError& error);

// Writes all `count` bytes; returns `count`, or -1 (some bytes may have been
// written before the failure).
int32_t FileWrite(int descriptor, const void* buffer, int32_t count, FileError& error);

// 64-bit seek; returns the new position or -1.
int64_t FileSeek(int descriptor, int64_t offset, FileSeekOrigin origin, FileError& error);

// The current position (64-bit), or -1.
int64_t FileTell(int descriptor);

// Commits written data to the disk; false on failure.
bool FileCommit(int descriptor, FileError& error);

bool FileClose(int descriptor);

} // namespace Quorvex::Vek::Platform
