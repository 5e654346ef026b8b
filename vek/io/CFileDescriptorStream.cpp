#include <vek/io/CFileDescriptorStream.h>

#include <vek/core/CString.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/platform/FileDescriptor.h>
#include <vek/platform/System.h>

#include <cstdint>

namespace Quorvex::Vek {

namespace {

using Platform::FileError;
using Platform::FileErrorKind;
using Platform::FileSeekOrigin;

constexpr int32_t kWaitStep = 100;

bool ToOpenMode(FileStream::FileMode mode, Platform::FileOpenMode& openMode)
{
    switch (mode) {
    case FileStream::FileMode::Read: openMode = Platform::FileOpenMode::Read; return true;
    case FileStream::FileMode::Write: openMode = Platform::FileOpenMode::Write; return true;
    case FileStream::FileMode::ReadWrite: openMode = Platform::FileOpenMode::ReadWrite; return true;
    case FileStream::FileMode::Append: openMode = Platform::FileOpenMode::Append; return true;
    case FileStream::FileMode::AppendReadWrite:
        openMode = Platform::FileOpenMode::AppendReadWrite;
        return true;
    }
    return false;
}

int OpenFailure(const FileError& error)
{
    switch (error.kind) {
    case FileErrorKind::NoEntry:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: RESULT_PATH_DOES_NOT_EXIST\n");
        return RESULT_PATH_DOES_NOT_EXIST;
    case FileErrorKind::AccessDenied:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: RESULT_ACCESS_DENIED\n");
        return RESULT_ACCESS_DENIED;
    case FileErrorKind::Exists:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: RESULT_FILE_EXISTS\n");
        return RESULT_FILE_EXISTS;
    case FileErrorKind::IsDirectory:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: RESULT_PATH_IS_DIRECTORY\n");
        return RESULT_PATH_IS_DIRECTORY;
    case FileErrorKind::NoSpace:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: RESULT_DISK_FULL\n");
        return RESULT_DISK_FULL;
    case FileErrorKind::NameTooLong:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: RESULT_PATH_NAME_TOO_LONG\n");
        return RESULT_PATH_NAME_TOO_LONG;
    default:
        Log(LogLevel::Error, "CFileDescriptorStream::Open: Unknown error: %d\n", error.number);
        return RESULT_ERROR;
    }
}

int ReadFailure(const FileError& error)
{
    switch (error.kind) {
    case FileErrorKind::NoMemory:
        Log(LogLevel::Error, "CFileDescriptorStream::Read: RESULT_OUT_OF_MEMORY\n");
        return RESULT_OUT_OF_MEMORY;
    case FileErrorKind::IsDirectory:
        Log(LogLevel::Error, "CFileDescriptorStream::Read: RESULT_PATH_IS_DIRECTORY\n");
        return RESULT_PATH_IS_DIRECTORY;
    default:
        return RESULT_IO_ERROR;
    }
}

bool IsOrigin(CStream::SeekOrigin origin)
{
    return origin == CStream::Begin || origin == CStream::Current || origin == CStream::End;
}

} // namespace

CFileDescriptorStream::CFileDescriptorStream(FileStream::FileMode mode) : m_mode(mode)
{
}

CFileDescriptorStream::~CFileDescriptorStream()
{
    CFileDescriptorStream::Close();
}

int CFileDescriptorStream::Open(CString* path)
{
    if (!path)
        return RESULT_ARGUMENT_NULL;
    // Shared, not adopted: reopening with the path already held must not
    // leave an extra reference behind.
    m_path = RObject<CString>::FromObject(path);
    Platform::FileOpenMode openMode;
    if (!ToOpenMode(m_mode, openMode)) {
        Log(LogLevel::Error, "CFileDescriptorStream::Open: unsupported file mode %d\n", int(m_mode));
        return RESULT_NOT_SUPPORTED;
    }
    Close();
    FileError error;
    const int descriptor = Platform::FileOpen(path->GetChars(), openMode, error);
    if (descriptor < 0)
        return OpenFailure(error);
    m_descriptor = descriptor;
    const int64_t end = Platform::FileSeek(descriptor, 0, FileSeekOrigin::End, error);
    m_length = end > 0 ? end : 0;
    m_knownPosition = Platform::FileSeek(descriptor, 0, FileSeekOrigin::Begin, error) == 0 ? 0 : -1;
    return 0;
}

int CFileDescriptorStream::Control(uint32_t code, int32_t size, unsigned char* data)
{
    if (code == CachingHint || code == ReadAheadHint)
        return size == 1 ? 0 : RESULT_ERROR;
    return CFileStream::Control(code, size, data);
}

bool CFileDescriptorStream::CanRead()
{
    return m_mode == FileStream::FileMode::Read || m_mode == FileStream::FileMode::ReadWrite;
}

bool CFileDescriptorStream::CanWrite()
{
    return m_mode == FileStream::FileMode::Write || m_mode == FileStream::FileMode::ReadWrite ||
           m_mode == FileStream::FileMode::Append;
}

int64_t CFileDescriptorStream::GetAvailableLength()
{
    if (m_descriptor < 0)
        return -1;
    FileError error;
    const int64_t position = Platform::FileTell(m_descriptor);
    const int64_t end = Platform::FileSeek(m_descriptor, 0, FileSeekOrigin::End, error);
    const int64_t back = Platform::FileSeek(m_descriptor, position, FileSeekOrigin::Begin, error);
    m_knownPosition = position >= 0 && back == position ? position : -1;
    return end;
}

int64_t CFileDescriptorStream::GetPosition()
{
    if (m_descriptor < 0)
        return -1;
    return m_knownPosition >= 0 ? m_knownPosition : Platform::FileTell(m_descriptor);
}

int32_t CFileDescriptorStream::WaitForGrowth(int64_t position, int32_t remainingWait)
{
    Log(LogLevel::Info, "CFileDescriptorStream::Read: waiting for %d ms at position %lld ...\n",
        remainingWait, static_cast<long long>(position));
    FileError error;
    int64_t end = -1;
    do {
        Platform::SleepMilliseconds(kWaitStep);
        remainingWait -= kWaitStep;
        end = Platform::FileSeek(m_descriptor, 0, FileSeekOrigin::End, error);
    } while (position >= end && remainingWait > 0);
    if (position < end) {
        Log(LogLevel::Info, "CFileDescriptorStream::Read: file length increased to %lld\n",
            static_cast<long long>(end));
        m_length = end;
        remainingWait = m_readWaitTime;
    }
    return remainingWait;
}

int CFileDescriptorStream::Read(unsigned char* buffer, int32_t count)
{
    if (m_descriptor < 0)
        return RESULT_IO_ERROR;
    if (count <= 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    int32_t got = 0;
    int32_t remainingWait = m_readWaitTime;
    // Known again only when the whole count was read in one go.
    const int64_t start = m_knownPosition;
    m_knownPosition = -1;
    for (;;) {
        FileError error;
        const int32_t n = Platform::FileRead(m_descriptor, buffer + got, count - got, error);
        if (n < 0) {
            // Put the position back where the caller left it.
            if (got > 0)
                Platform::FileSeek(m_descriptor, -got, FileSeekOrigin::Current, error);
            return ReadFailure(error);
        }
        got += n;
        if (got >= count) {
            if (start >= 0)
                m_knownPosition = start + got;
            return got;
        }
        const int64_t position = Platform::FileTell(m_descriptor);
        if (remainingWait > 0)
            remainingWait = WaitForGrowth(position, remainingWait);
        Platform::FileSeek(m_descriptor, position, FileSeekOrigin::Begin, error);
        if (remainingWait <= 0)
            return got;
    }
}

int CFileDescriptorStream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition)
{
    // An unknown origin would trip the Windows runtime's parameter check.
    if (m_descriptor < 0 || !IsOrigin(origin))
        return RESULT_IO_ERROR;
    if (origin == Begin && offset >= 0 && offset == m_knownPosition) {
        if (newPosition)
            *newPosition = offset;
        return 0;
    }
    FileError error;
    const int64_t position =
        Platform::FileSeek(m_descriptor, offset, FileSeekOrigin(int(origin)), error);
    if (position == -1)
        return RESULT_IO_ERROR;
    m_knownPosition = position;
    if (newPosition)
        *newPosition = position;
    return 0;
}

int CFileDescriptorStream::Write(const unsigned char* buffer, int32_t count)
{
    if (m_descriptor < 0)
        return RESULT_IO_ERROR;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (count == 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    FileError error;
    m_knownPosition = -1;
    const int64_t before = Platform::FileTell(m_descriptor);
    if (Platform::FileWrite(m_descriptor, buffer, count, error) < 0) {
        FileError ignored;
        Platform::FileSeek(m_descriptor, before, FileSeekOrigin::Begin, ignored);
        if (error.kind == FileErrorKind::NoSpace) {
            Log(LogLevel::Error, "CFileDescriptorStream::Write: RESULT_DISK_FULL\n");
            return RESULT_DISK_FULL;
        }
        return RESULT_IO_ERROR;
    }
    // The position after a write is taken as a 32-bit value, as the
    // runtime's 32-bit position call gives it, so the cached length follows
    // writes only below 2 GiB; Open and reads that see the file grow still
    // learn the full 64-bit length.
    const int64_t position = Platform::FileTell(m_descriptor);
    if (position <= INT32_MAX && position > m_length)
        m_length = position;
    m_knownPosition = position;
    return count;
}

int CFileDescriptorStream::Flush()
{
    if (m_mode == FileStream::FileMode::Read)
        return 0;
    FileError error;
    if (m_descriptor < 0 || !Platform::FileCommit(m_descriptor, error))
        return RESULT_IO_ERROR;
    return 0;
}

void CFileDescriptorStream::Close()
{
    if (m_descriptor >= 0) {
        Platform::FileClose(m_descriptor);
        m_descriptor = -1;
    }
}

} // namespace Quorvex::Vek
