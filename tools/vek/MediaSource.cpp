#include "MediaSource.h"

#include "Commands.h"

#include <cstdio>
#include <cstring>

#include <vek/containers/ContainerReaderInventory.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/CUri.h>

using namespace Quorvex::Vek;

namespace VekTool {

void RegisterReaders()
{
    static const bool registered = [] {
        ContainerReaderInventory::AddWavContainerReader("vek");
        ContainerReaderInventory::AddWav64ContainerReader("vek");
        ContainerReaderInventory::AddAiffContainerReader("vek");
        ContainerReaderInventory::AddMovContainerReader("vek");
        ContainerReaderInventory::AddMpeg4ContainerReader("vek");
        ContainerReaderInventory::AddMpeg4VideoContainerReader("vek");
        ContainerReaderInventory::AddMpeg4AvcContainerReader("vek");
        ContainerReaderInventory::AddMpegHevcContainerReader("vek");
        ContainerReaderInventory::AddMpeg1VideoContainerReader("vek");
        ContainerReaderInventory::AddMpeg2VideoContainerReader("vek");
        ContainerReaderInventory::AddAacContainerReader("vek");
        ContainerReaderInventory::AddAc3ContainerReader("vek");
        ContainerReaderInventory::AddMpegAudioContainerReader("vek");
        return true;
    }();
    (void)registered;
}

namespace {

bool LooksLikeUri(const char* argument)
{
    const char* colon = std::strchr(argument, ':');
    // "C:\..." is a drive letter, not a scheme.
    return colon && colon - argument > 1 && std::strncmp(colon, "://", 3) == 0;
}

// The local path of a path or file URI; false (with a message) otherwise.
bool ResolvePath(const char* command, const char* argument, std::string& path)
{
    if (!LooksLikeUri(argument)) {
        path = argument;
        return true;
    }
    RObject<CUri> uri(CUri::CreateWithUrl(argument));
    if (!uri) {
        std::fprintf(stderr, "vek %s: '%s' is not a valid URI\n", command, argument);
        return false;
    }
    if (!uri->IsFile()) {
        std::fprintf(stderr, "vek %s: '%s': only file URIs can be opened\n", command, argument);
        return false;
    }
    RObject<CString> local(uri->GetLocalPath());
    if (!local) {
        std::fprintf(stderr, "vek %s: '%s' names no local file\n", command, argument);
        return false;
    }
    path = local->GetChars();
    return true;
}

} // namespace

int64_t FileSize(const std::string& path)
{
    RObject<CFileDescriptorStream> file(new CFileDescriptorStream(FileStream::FileMode::Read));
    if (!file || file->Open(path.c_str()) < 0)
        return -1;
    return file->GetLength();
}

int OpenMediaSource(const char* command, const char* argument, MediaSource& source)
{
    RegisterReaders();
    if (!ResolvePath(command, argument, source.path))
        return kExitFailure;
    source.size = FileSize(source.path);
    if (source.size < 0) {
        std::fprintf(stderr, "vek %s: cannot open '%s'\n", command, source.path.c_str());
        return kExitFailure;
    }
    RObject<CString> path(CString::Create(source.path.c_str()));
    source.reader = RObject<CContainerReader>(path ? CContainerReader::Create(path) : nullptr);
    if (!source.reader) {
        std::fprintf(stderr, "vek %s: '%s' is not a container format this library reads\n", command,
                     source.path.c_str());
        return kExitFailure;
    }
    return kExitOk;
}

} // namespace VekTool

namespace VekTool {

int ReportIndexFailure(const char* command, const MediaSource& source, int result)
{
    std::fprintf(stderr, "vek %s: '%s' is damaged or unsupported (%s); VEK_LOG_LEVEL=1 shows why\n", command,
                 source.path.c_str(), Quorvex::Vek::GetResultName(result));
    return kExitFailure;
}

} // namespace VekTool
