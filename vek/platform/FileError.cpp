// The C runtime's error numbers for files, named by their symbols: the
// numbers themselves differ between platforms.
#include <vek/platform/FileDescriptor.h>

#include <cerrno>

namespace Quorvex::Vek::Platform {

FileError FileErrorFromNumber(int number)
{
    FileError error;
    error.number = number;
    switch (number) {
    // A path that runs through a file: the Windows runtime reports it as
    // not found, POSIX as "not a directory".
    case ENOENT:
    case ENOTDIR: error.kind = FileErrorKind::NoEntry; break;
    case EACCES: error.kind = FileErrorKind::AccessDenied; break;
    case EEXIST: error.kind = FileErrorKind::Exists; break;
    case EISDIR: error.kind = FileErrorKind::IsDirectory; break;
    case ENOSPC: error.kind = FileErrorKind::NoSpace; break;
    case ENAMETOOLONG: error.kind = FileErrorKind::NameTooLong; break;
    case ENOMEM: error.kind = FileErrorKind::NoMemory; break;
    default: error.kind = FileErrorKind::Other; break;
    }
    return error;
}

} // namespace Quorvex::Vek::Platform
