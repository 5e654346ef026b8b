#include <vek/platform/FileDescriptor.h>

#include <windows.h>

#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <vector>

namespace Quorvex::Vek::Platform {

namespace {

// Not inherited by child processes, like the POSIX build's O_CLOEXEC: a
// host that starts programs must not hand them the library's open files.
int OpenFlags(FileOpenMode mode)
{
    constexpr int common = _O_BINARY | _O_NOINHERIT;
    switch (mode) {
    case FileOpenMode::Read: return common | _O_RDONLY;
    case FileOpenMode::Write: return common | _O_WRONLY | _O_CREAT | _O_TRUNC;
    case FileOpenMode::ReadWrite: return common | _O_RDWR | _O_CREAT | _O_TRUNC;
    case FileOpenMode::Append: return common | _O_WRONLY | _O_CREAT | _O_APPEND;
    case FileOpenMode::AppendReadWrite: return common | _O_RDWR | _O_CREAT | _O_APPEND;
    }
    return common | _O_RDONLY;
}

std::vector<wchar_t> Widen(const char* utf8)
{
    const int units = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0);
    if (units <= 0)
        return {};
    std::vector<wchar_t> wide(static_cast<size_t>(units));
    MultiByteToWideChar(CP_UTF8, 0, utf8, -1, wide.data(), units);
    return wide;
}

bool IsDirectory(const wchar_t* path)
{
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// The longest file or folder name, in UTF-16 units, and the longest path
// that the wide-character calls take at all.
constexpr size_t kMaxNameUnits = 255;
constexpr size_t kMaxPathUnits = 32767;

// The runtime reports a name over the file system's limit as "not found";
// POSIX says "name too long", and both builds must give the same answer.
bool IsNameTooLong(const std::vector<wchar_t>& path)
{
    // `path` ends with its terminator.
    if (path.size() - 1 >= kMaxPathUnits)
        return true;
    size_t run = 0;
    for (size_t i = 0; i + 1 < path.size(); ++i) {
        const wchar_t unit = path[i];
        run = (unit == L'\\' || unit == L'/') ? 0 : run + 1;
        if (run > kMaxNameUnits)
            return true;
    }
    return false;
}

} // namespace

int FileOpen(const char* utf8Path, FileOpenMode mode, FileError& error)
{
    std::vector<wchar_t> path = Widen(utf8Path);
    if (path.empty()) {
        error = FileErrorFromNumber(ENOENT);
        return kInvalidFileDescriptor;
    }
    const int descriptor = _wopen(path.data(), OpenFlags(mode), _S_IREAD | _S_IWRITE);
    if (descriptor >= 0)
        return descriptor;
    const int number = errno;
    if (number == ENOENT && IsNameTooLong(path)) {
        error = FileErrorFromNumber(ENAMETOOLONG);
        return kInvalidFileDescriptor;
    }
    // The runtime reports a directory as access denied; name it as POSIX does.
    if (number == EACCES && IsDirectory(path.data())) {
        error = FileErrorFromNumber(EISDIR);
        return kInvalidFileDescriptor;
    }
    error = FileErrorFromNumber(number);
    return kInvalidFileDescriptor;
}

int32_t FileRead(int descriptor, void* buffer, int32_t count, FileError& error)
{
    const int got = _read(descriptor, buffer, unsigned(count));
    if (got < 0) {
        error = FileErrorFromNumber(errno);
        return -1;
    }
    return int32_t(got);
}

int32_t FileWrite(int descriptor, const void* buffer, int32_t count, FileError& error)
{
    const int put = _write(descriptor, buffer, unsigned(count));
    if (put < 0) {
        error = FileErrorFromNumber(errno);
        return -1;
    }
    if (put < count) {
        error = FileErrorFromNumber(ENOSPC);
        return -1;
    }
    return int32_t(put);
}

int64_t FileSeek(int descriptor, int64_t offset, FileSeekOrigin origin, FileError& error)
{
    const int64_t position = _lseeki64(descriptor, offset, int(origin));
    if (position < 0) {
        error = FileErrorFromNumber(errno);
        return -1;
    }
    return position;
}

int64_t FileTell(int descriptor)
{
    return _telli64(descriptor);
}

bool FileCommit(int descriptor, FileError& error)
{
    if (_commit(descriptor) == 0)
        return true;
    error = FileErrorFromNumber(errno);
    return false;
}

bool FileClose(int descriptor)
{
    return _close(descriptor) == 0;
}

} // namespace Quorvex::Vek::Platform
