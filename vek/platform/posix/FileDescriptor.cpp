#include <vek/platform/FileDescriptor.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Quorvex::Vek::Platform {

namespace {

static_assert(sizeof(off_t) == 8, "the file layer needs 64-bit file offsets");

int OpenFlags(FileOpenMode mode)
{
    switch (mode) {
    case FileOpenMode::Read: return O_RDONLY;
    case FileOpenMode::Write: return O_WRONLY | O_CREAT | O_TRUNC;
    case FileOpenMode::ReadWrite: return O_RDWR | O_CREAT | O_TRUNC;
    case FileOpenMode::Append: return O_WRONLY | O_CREAT | O_APPEND;
    case FileOpenMode::AppendReadWrite: return O_RDWR | O_CREAT | O_APPEND;
    }
    return O_RDONLY;
}

int Whence(FileSeekOrigin origin)
{
    switch (origin) {
    case FileSeekOrigin::Begin: return SEEK_SET;
    case FileSeekOrigin::Current: return SEEK_CUR;
    case FileSeekOrigin::End: return SEEK_END;
    }
    return SEEK_SET;
}

} // namespace

int FileOpen(const char* utf8Path, FileOpenMode mode, FileError& error)
{
    int descriptor;
    do
        descriptor = ::open(utf8Path, OpenFlags(mode) | O_CLOEXEC, S_IRUSR | S_IWUSR);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) {
        error = FileErrorFromNumber(errno);
        return kInvalidFileDescriptor;
    }
    // POSIX lets a directory be opened read-only; the Windows runtime does
    // not. Refuse it here so both builds answer the same.
    struct stat info {};
    if (::fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode)) {
        ::close(descriptor);
        error = FileErrorFromNumber(EISDIR);
        return kInvalidFileDescriptor;
    }
    return descriptor;
}

int32_t FileRead(int descriptor, void* buffer, int32_t count, FileError& error)
{
    ssize_t got;
    do
        got = ::read(descriptor, buffer, size_t(count));
    while (got < 0 && errno == EINTR);
    if (got < 0) {
        error = FileErrorFromNumber(errno);
        return -1;
    }
    return int32_t(got);
}

int32_t FileWrite(int descriptor, const void* buffer, int32_t count, FileError& error)
{
    // The Windows runtime writes everything or fails; POSIX may stop short,
    // so keep going until all bytes are out.
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    int32_t done = 0;
    while (done < count) {
        const ssize_t put = ::write(descriptor, bytes + done, size_t(count - done));
        if (put < 0) {
            if (errno == EINTR)
                continue;
            error = FileErrorFromNumber(errno);
            return -1;
        }
        if (put == 0) {
            error = FileErrorFromNumber(ENOSPC);
            return -1;
        }
        done += int32_t(put);
    }
    return done;
}

int64_t FileSeek(int descriptor, int64_t offset, FileSeekOrigin origin, FileError& error)
{
    const off_t position = ::lseek(descriptor, off_t(offset), Whence(origin));
    if (position < 0) {
        error = FileErrorFromNumber(errno);
        return -1;
    }
    return int64_t(position);
}

int64_t FileTell(int descriptor)
{
    return int64_t(::lseek(descriptor, 0, SEEK_CUR));
}

bool FileCommit(int descriptor, FileError& error)
{
    if (::fsync(descriptor) == 0)
        return true;
    // Character devices and pipes cannot be synchronised; nothing is lost.
    if (errno == EINVAL || errno == EROFS)
        return true;
    error = FileErrorFromNumber(errno);
    return false;
}

bool FileClose(int descriptor)
{
    return ::close(descriptor) == 0;
}

} // namespace Quorvex::Vek::Platform
