#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/core/String.h>
#include <vek/core/Result.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/CMemoryStream.h>
#include <vek/io/FileDescriptorStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#if !VEK_PLATFORM_WINDOWS
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "support/LogCapture.h"
#include "support/TestSupport.h"

using namespace Quorvex::Vek;
using VekTest::LogCapture;
using VekTest::TempDir;
using Mode = FileStream::FileMode;

namespace {

RObject<CFileDescriptorStream> OpenFile(const std::string& path, Mode mode, int& result)
{
    RObject<CFileDescriptorStream> stream(new CFileDescriptorStream(mode));
    result = stream->Open(path.c_str());
    return stream;
}

std::string Pattern(size_t size)
{
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = char(i * 7 + 3);
    return bytes;
}

} // namespace

TEST(FileDescriptorStream, ModesAnswerTheirCapabilities)
{
    struct Case {
        Mode mode;
        bool canRead;
        bool canWrite;
        bool keepsContent;
    };
    const Case cases[] = {
        {Mode::Read, true, false, true},
        {Mode::Write, false, true, false},
        {Mode::ReadWrite, true, true, false},
        {Mode::Append, false, true, true},
        {Mode::AppendReadWrite, false, false, true}, // deliberately false/false
    };
    TempDir dir;
    for (const Case& c : cases) {
        const std::string path = dir.File("mode" + std::to_string(int(c.mode)));
        ASSERT_TRUE(VekTest::WriteFile(path, "abcdef"));
        int result = 0;
        RObject<CFileDescriptorStream> stream(OpenFile(path, c.mode, result));
        ASSERT_EQ(result, 0) << int(c.mode);
        EXPECT_EQ(stream->CanRead(), c.canRead) << int(c.mode);
        EXPECT_EQ(stream->CanWrite(), c.canWrite) << int(c.mode);
        EXPECT_TRUE(stream->CanSeek());
        EXPECT_EQ(stream->GetLength(), c.keepsContent ? 6 : 0) << int(c.mode);
        EXPECT_EQ(stream->GetPosition(), 0);
    }
    int result = 0;
    OpenFile(dir.File("x"), Mode(7), result);
    EXPECT_EQ(result, RESULT_NOT_SUPPORTED);
    EXPECT_FALSE(std::filesystem::exists(dir.File("x")));
}

TEST(FileDescriptorStream, AppendReadWriteStillReadsAndWrites)
{
    TempDir dir;
    const std::string path = dir.File("append");
    ASSERT_TRUE(VekTest::WriteFile(path, "abc"));
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::AppendReadWrite, result));
    ASSERT_EQ(result, 0);
    unsigned char out[3] = {};
    EXPECT_EQ(stream->Read(out, 3), 3);
    EXPECT_EQ(out[2], 'c');
    EXPECT_EQ(stream->Write(reinterpret_cast<const unsigned char*>("de"), 2), 2);
    EXPECT_EQ(stream->GetLength(), 5);
    stream->Close();
    EXPECT_EQ(VekTest::ReadFile(path), "abcde");
}

TEST(FileDescriptorStream, WriteReadSeekRoundTrip)
{
    TempDir dir;
    const std::string path = dir.File("data");
    const std::string bytes = Pattern(10000);
    Stream handle;
    ASSERT_EQ(FileDescriptorStream::Open(path.c_str(), Mode::ReadWrite, handle), 0);
    EXPECT_EQ(handle.Write(reinterpret_cast<const unsigned char*>(bytes.data()), 10000), 10000);
    EXPECT_EQ(handle.GetLength(), 10000);
    int64_t position = -1;
    EXPECT_EQ(handle.Seek(-100, CStream::End, &position), 0);
    EXPECT_EQ(position, 9900);
    unsigned char out[200] = {};
    EXPECT_EQ(handle.Read(out, 200), 100);
    EXPECT_EQ(std::memcmp(out, bytes.data() + 9900, 100), 0);
    EXPECT_EQ(handle.Read(out, 200), 0);
    // A failed seek leaves the position alone.
    EXPECT_EQ(handle.Seek(-1, CStream::Begin), RESULT_IO_ERROR);
    EXPECT_EQ(handle.Seek(0, CStream::SeekOrigin(9)), RESULT_IO_ERROR);
    EXPECT_EQ(handle.GetPosition(), 10000);
    EXPECT_EQ(handle.Flush(), 0);
    handle.Close();
    EXPECT_EQ(handle.GetPosition(), -1);
    EXPECT_EQ(handle.Read(out, 1), RESULT_IO_ERROR);
    EXPECT_EQ(VekTest::ReadFile(path), bytes);

    Stream reopened;
    ASSERT_EQ(FileDescriptorStream::Open(String::Create(path.c_str()), Mode::Read, reopened), 0);
    EXPECT_EQ(reopened.GetLength(), 10000);
    EXPECT_EQ(reopened.Write(out, 1), RESULT_IO_ERROR) << "a read-only descriptor";
    EXPECT_EQ(reopened.GetLength(), 10000);
}

TEST(FileDescriptorStream, PathsAreUnicode)
{
    TempDir dir;
    // "Grüße-音.wav" spelled in UTF-8 bytes, and the same name as UTF-16.
    const std::string name = "Gr\xC3\xBC\xC3\x9F" "e-\xE9\x9F\xB3.wav";
    // Joined by hand: the test support's path helpers go through the
    // Windows ANSI code page, not UTF-8.
    const std::string path = dir.Path() + "/" + name;
    Stream written;
    ASSERT_EQ(FileDescriptorStream::Open(path.c_str(), Mode::Write, written), 0);
    const unsigned char bytes[3] = {1, 2, 3};
    ASSERT_EQ(written.Write(bytes, 3), 3);
    written.Close();

    namespace fs = std::filesystem;
    const fs::path expected = fs::path(dir.Path()) / fs::path(std::u8string(
        reinterpret_cast<const char8_t*>(name.data()), name.size()));
    ASSERT_TRUE(fs::exists(expected));
    EXPECT_EQ(fs::file_size(expected), 3u);

    std::u16string wide = std::filesystem::path(dir.Path()).u16string();
    wide += u"/Gr\u00FC\u00DFe-\u97F3.wav";
    Stream read;
    ASSERT_EQ(FileDescriptorStream::Open(
                  String::Create(reinterpret_cast<const WChar*>(wide.c_str())), Mode::Read, read),
              0);
    EXPECT_EQ(read.GetLength(), 3);
}

TEST(FileDescriptorStream, OpenFailuresAreMappedAndLogged)
{
    TempDir dir;
    LogCapture log(1);
    const std::string longName = dir.File(std::string(300, 'n'));
    ASSERT_TRUE(VekTest::WriteFile(dir.File("plain"), "x"));
    struct Case {
        std::string path;
        Mode mode;
        int result;
        const char* name; // as the log line spells the result
    };
#define NAMED(code) code, #code
    const Case cases[] = {
        {dir.File("absent"), Mode::Read, NAMED(RESULT_PATH_DOES_NOT_EXIST)},
        // A folder in the path that is a file (Windows says "not found").
        {dir.File("plain") + "/inner", Mode::Write, NAMED(RESULT_PATH_DOES_NOT_EXIST)},
        {dir.Path(), Mode::Read, NAMED(RESULT_PATH_IS_DIRECTORY)},
        {dir.Path(), Mode::ReadWrite, NAMED(RESULT_PATH_IS_DIRECTORY)},
        // A name over 255 units is too long on every build (the Windows
        // runtime itself only says "not found").
        {longName, Mode::Read, NAMED(RESULT_PATH_NAME_TOO_LONG)},
        {longName + "/inner", Mode::Write, NAMED(RESULT_PATH_NAME_TOO_LONG)},
        {dir.File(std::string(255, 'n')), Mode::Read, NAMED(RESULT_PATH_DOES_NOT_EXIST)},
    };
#undef NAMED
    const Stream earlier(new CMemoryStream());
    for (const Case& c : cases) {
        Stream handle = earlier;
        EXPECT_EQ(FileDescriptorStream::Open(c.path.c_str(), c.mode, handle), c.result) << c.path;
        EXPECT_EQ(handle.ToObject(), earlier.ToObject()) << "the result stays untouched on failure";
        const std::string line = std::string("CFileDescriptorStream::Open: ") + c.name + "\n";
        EXPECT_NE(log.Text().find(line), std::string::npos) << line;
    }
    Stream handle;
    EXPECT_EQ(FileDescriptorStream::Open(static_cast<CString*>(nullptr), Mode::Read, handle),
              RESULT_ARGUMENT_NULL);
}

namespace {

struct OpenResults {
    int read = 0;
    int write = 0;
};

OpenResults OpenForReadAndWrite(const std::string& path)
{
    OpenResults results;
    OpenFile(path, Mode::Read, results.read);
    OpenFile(path, Mode::Write, results.write);
    return results;
}

#if !VEK_PLATFORM_WINDOWS
// Root opens anything, so the attempt is made by a forked child that has
// given up root for an unprivileged user first. Returns false when the
// child could not drop its privileges.
bool OpenAsUnprivilegedUser(const std::string& path, uid_t user, gid_t group, OpenResults& results)
{
    int channel[2];
    if (::pipe(channel) != 0)
        return false;
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(channel[0]);
        ::close(channel[1]);
        return false;
    }
    if (child == 0) {
        ::close(channel[0]);
        if (::setgroups(0, nullptr) != 0 || ::setgid(group) != 0 || ::setuid(user) != 0)
            ::_exit(2);
        const OpenResults answer = OpenForReadAndWrite(path);
        const bool sent = ::write(channel[1], &answer, sizeof answer) == ssize_t(sizeof answer);
        ::_exit(sent ? 0 : 3);
    }
    ::close(channel[1]);
    const bool received = ::read(channel[0], &results, sizeof results) == ssize_t(sizeof results);
    ::close(channel[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return received && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
#endif

} // namespace

TEST(FileDescriptorStream, ReadOnlyFileRefusesWriting)
{
    TempDir dir;
    const std::string path = dir.File("locked");
    ASSERT_TRUE(VekTest::WriteFile(path, "keep"));
    namespace fs = std::filesystem;
    fs::permissions(path, fs::perms::owner_read, fs::perm_options::replace);
    LogCapture log(1);
    OpenResults results;
    if (std::ofstream(path, std::ios::app)) {
        // The bits do not stop this user: on POSIX as root, hand the file
        // to an unprivileged user and try as that user.
#if !VEK_PLATFORM_WINDOWS
        const uid_t nobody = 65534;
        if (::geteuid() != 0 || ::chown(path.c_str(), nobody, nobody) != 0)
            GTEST_SKIP() << "permissions are not enforced for this user";
        fs::permissions(dir.Path(), fs::perms::others_exec, fs::perm_options::add);
        if (!OpenAsUnprivilegedUser(path, nobody, nobody, results))
            GTEST_SKIP() << "cannot run as an unprivileged user";
#else
        GTEST_SKIP() << "permissions are not enforced for this user";
#endif
    } else {
        results = OpenForReadAndWrite(path);
    }
    EXPECT_EQ(results.read, 0) << "reading is allowed: the refusal is about the mode";
    EXPECT_EQ(results.write, RESULT_ACCESS_DENIED);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Open: RESULT_ACCESS_DENIED\n"), 1u);
    EXPECT_EQ(VekTest::ReadFile(path), "keep");
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::replace);
}

TEST(FileDescriptorStream, DiskFullIsReportedAndChangesNothing)
{
    if (VEK_PLATFORM_WINDOWS || !std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "needs /dev/full";
    LogCapture log(1);
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile("/dev/full", Mode::Write, result));
    ASSERT_EQ(result, 0);
    const std::string bytes = Pattern(4096);
    EXPECT_EQ(stream->Write(reinterpret_cast<const unsigned char*>(bytes.data()), 4096),
              RESULT_DISK_FULL);
    EXPECT_EQ(stream->GetLength(), 0);
    EXPECT_EQ(stream->GetPosition(), 0);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Write: RESULT_DISK_FULL\n"), 1u);
}

TEST(FileDescriptorStream, ControlCodes)
{
    struct Case {
        uint32_t code;
        int32_t size;
        int32_t value;
        int result;
        int32_t waitAfter;
    };
    const Case cases[] = {
        {Four("srto"), 4, 3600001, RESULT_ARGUMENT_OUT_OF_RANGE, 0},
        {Four("srto"), 4, 3600000, 0, 3600000},
        {Four("srto"), 2, 5, RESULT_ERROR, 3600000},
        {Four("srto"), 4, 250, 0, 250},
        {Four("grto"), 8, 0, RESULT_ERROR, 250},
        {Four("cach"), 1, 1, 0, 250},
        {Four("cach"), 4, 1, RESULT_ERROR, 250},
        {Four("rdah"), 1, 0, 0, 250},
        {Four("rdah"), 0, 0, RESULT_ERROR, 250},
        {Four("what"), 4, 0, RESULT_NOT_SUPPORTED, 250},
    };
    TempDir dir;
    const std::string path = dir.File("c");
    ASSERT_TRUE(VekTest::WriteFile(path, "x"));
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    for (const Case& c : cases) {
        unsigned char data[8] = {};
        std::memcpy(data, &c.value, sizeof c.value);
        EXPECT_EQ(stream->Control(c.code, c.size, data), c.result)
            << std::hex << c.code << std::dec << " " << c.value;
        int32_t wait = -1;
        ASSERT_EQ(stream->Control(Four("grto"), 4, reinterpret_cast<unsigned char*>(&wait)), 0);
        EXPECT_EQ(wait, c.waitAfter) << std::hex << c.code << std::dec << " " << c.value;
    }
}

TEST(FileDescriptorStream, ShortReadWithoutWaitReturnsWhatIsThere)
{
    TempDir dir;
    const std::string path = dir.File("short");
    ASSERT_TRUE(VekTest::WriteFile(path, Pattern(100)));
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    ASSERT_EQ(stream->Seek(60, CStream::Begin), 0);
    // Whether it waited shows in the log, not in a clock that a busy machine
    // can stretch.
    LogCapture log(3);
    unsigned char out[100] = {};
    EXPECT_EQ(stream->Read(out, 100), 40);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Read: waiting for "), 0u);
    EXPECT_EQ(stream->GetPosition(), 100);
    EXPECT_EQ(std::memcmp(out, Pattern(100).data() + 60, 40), 0);
}

TEST(FileDescriptorStream, WaitsForAFileThatDoesNotGrow)
{
    TempDir dir;
    const std::string path = dir.File("still");
    ASSERT_TRUE(VekTest::WriteFile(path, Pattern(10)));
    LogCapture log(3);
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    ASSERT_EQ(stream->SetReadWaitTime(1000), 0);
    unsigned char out[20] = {};
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(stream->Read(out, 20), 10);
    const auto waited = std::chrono::steady_clock::now() - started;
    EXPECT_GE(waited, std::chrono::milliseconds(1000));
    // Only a wait that ignores its limit gets near this; one wait too many
    // shows in the log below.
    EXPECT_LT(waited, std::chrono::seconds(20));
    EXPECT_EQ(stream->GetPosition(), 10);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Read: waiting for "), 1u);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Read: waiting for 1000 ms at position 10 ...\n"), 1u);
    EXPECT_EQ(log.Count("file length increased"), 0u);
}

TEST(FileDescriptorStream, FollowsAFileGrownByAnotherWriter)
{
    TempDir dir;
    const std::string path = dir.File("growing");
    const std::string bytes = Pattern(300);
    ASSERT_TRUE(VekTest::WriteFile(path, bytes.substr(0, 100)));
    LogCapture log(3);
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    // Each growth restarts the wait: a long one costs nothing here and keeps a
    // busy machine's slow writer within it.
    ASSERT_EQ(stream->SetReadWaitTime(5000), 0);

    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        std::ofstream(path, std::ios::binary | std::ios::app) << bytes.substr(100, 100);
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        std::ofstream(path, std::ios::binary | std::ios::app) << bytes.substr(200, 100);
    });
    unsigned char out[300] = {};
    EXPECT_EQ(stream->Read(out, 300), 300);
    writer.join();
    EXPECT_EQ(std::memcmp(out, bytes.data(), 300), 0);
    EXPECT_EQ(stream->GetLength(), 300);
    EXPECT_EQ(stream->GetPosition(), 300);
    EXPECT_GE(log.Count("CFileDescriptorStream::Read: file length increased to "), 1u);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Read: file length increased to 300\n"), 1u);
    EXPECT_EQ(log.Count("CFileDescriptorStream::Read: waiting for 5000 ms at position 100 ...\n"), 1u);
}

TEST(FileDescriptorStream, AvailableLengthMeasuresNowWithoutMoving)
{
    TempDir dir;
    const std::string path = dir.File("measure");
    ASSERT_TRUE(VekTest::WriteFile(path, Pattern(50)));
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    ASSERT_EQ(stream->Seek(20, CStream::Begin), 0);
    std::ofstream(path, std::ios::binary | std::ios::app) << Pattern(30);
    EXPECT_EQ(stream->GetLength(), 50);
    EXPECT_EQ(stream->GetAvailableLength(), 80);
    EXPECT_EQ(stream->GetPosition(), 20);
}

TEST(FileDescriptorStream, ReopeningKeepsOneReferenceToThePath)
{
    TempDir dir;
    const std::string name = dir.File("again");
    ASSERT_TRUE(VekTest::WriteFile(name, "abc"));
    RObject<CString> path(new CString(name.c_str()));
    {
        RObject<CFileDescriptorStream> stream(new CFileDescriptorStream(Mode::Read));
        ASSERT_EQ(stream->Open(path), 0);
        ASSERT_EQ(stream->Open(path), 0);
        EXPECT_EQ(stream->GetPath(), path.Get());
        EXPECT_EQ(path->GetReferenceCount(), 2);
    }
    EXPECT_EQ(path->GetReferenceCount(), 1);
}

// Offsets beyond 32 bits in a sparse file, directly and through a block
// cache. Writes keep the cached length only below 2 GiB, the same on every
// build (Wine's 32-bit position call cuts a large position to its low 32
// bits rather than failing); Open and the available length see it all.
TEST(FileDescriptorStream, OffsetsPastFourGigabytes)
{
    struct Case {
        int64_t position;
        int64_t lengthAfterWrite;
    };
    const int64_t giB = int64_t(1) << 30;
    const Case cases[] = {
        {1000, 1008},
        {2 * giB - 4, 1008},      // ends past 2 GiB: no longer tracked
        {4 * giB + 3, 1008},
        {5 * giB - 8, 1008},
    };
    TempDir dir;
    const std::string path = dir.File("sparse");
    int result = 0;
    RObject<CFileDescriptorStream> writer(OpenFile(path, Mode::ReadWrite, result));
    ASSERT_EQ(result, 0);
    for (const Case& c : cases) {
        const std::string mark = Pattern(size_t(c.position % 97) + 8).substr(size_t(c.position % 97));
        int64_t position = -1;
        ASSERT_EQ(writer->Seek(c.position, CStream::Begin, &position), 0) << c.position;
        EXPECT_EQ(position, c.position);
        ASSERT_EQ(writer->Write(reinterpret_cast<const unsigned char*>(mark.data()), 8), 8);
        EXPECT_EQ(writer->GetPosition(), c.position + 8);
        EXPECT_EQ(writer->GetLength(), c.lengthAfterWrite) << c.position;
    }
    EXPECT_EQ(writer->GetAvailableLength(), 5 * giB);
    writer->Close();

    RObject<CFileDescriptorStream> file(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    EXPECT_EQ(file->GetLength(), 5 * giB);
    RObject<CBufferedStream> cache(new CBufferedStream(file, 65536, 4));
    EXPECT_EQ(cache->GetLength(), 5 * giB);
    for (const Case& c : cases) {
        const std::string mark = Pattern(size_t(c.position % 97) + 8).substr(size_t(c.position % 97));
        // Four zero bytes of the hole on either side of the mark.
        unsigned char out[16] = {};
        std::memset(out, 0xEE, sizeof out);
        ASSERT_EQ(cache->Seek(c.position - 4, CStream::Begin), 0);
        ASSERT_EQ(cache->Read(out, 16), c.position + 8 == 5 * giB ? 12 : 16) << c.position;
        EXPECT_EQ(std::memcmp(out + 4, mark.data(), 8), 0) << c.position;
        EXPECT_EQ(out[3], 0) << c.position;
        EXPECT_EQ(cache->GetPosition(), std::min(c.position + 12, 5 * giB));
        unsigned char direct[8] = {};
        ASSERT_EQ(file->Seek(c.position, CStream::Begin), 0);
        ASSERT_EQ(file->Read(direct, 8), 8);
        EXPECT_EQ(std::memcmp(direct, mark.data(), 8), 0) << c.position;
    }
}

#if !VEK_PLATFORM_WINDOWS
// A POSIX file name is bytes, not necessarily UTF-8: a Latin-1 name made
// by another program must open as it stands.
TEST(FileDescriptorStream, NameThatIsNotUtf8Opens)
{
    TempDir dir;
    const std::string path = dir.File("caf\xE9.wav");
    ASSERT_TRUE(VekTest::WriteFile(path, "RIFF"));
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::Read, result));
    ASSERT_EQ(result, 0);
    unsigned char bytes[4] = {};
    EXPECT_EQ(stream->Read(bytes, 4), 4);
    EXPECT_EQ(std::memcmp(bytes, "RIFF", 4), 0);
}
#endif

// The stream remembers the descriptor's offset to skip seeks to where it
// already stands. Every step below moves the offset in a different way; a
// stale memory shows as a wrong position or wrong bytes against a model of
// the file kept here.
TEST(FileDescriptorStream, RememberedOffsetFollowsEveryMove)
{
    enum Op { Read, SeekBegin, SeekCurrent, SeekEnd, Write, Available };
    const struct {
        Op op;
        int64_t value;
    } steps[] = {
        {Read, 100},       {SeekBegin, 100},  {Read, 50},       {SeekCurrent, -50}, {Write, 20},
        {SeekBegin, 120},  {Read, 10},        {SeekBegin, 120}, {Read, 5000},       {SeekBegin, 1000},
        {Read, 1},         {SeekEnd, -10},    {Available, 0},   {Read, 4},          {SeekBegin, 994},
        {Write, 30},       {SeekBegin, 1024}, {Read, 8},        {SeekBegin, 0},     {Read, 1024},
    };
    TempDir dir;
    const std::string path = dir.File("moves");
    std::string model = Pattern(1000);
    int result = 0;
    RObject<CFileDescriptorStream> stream(OpenFile(path, Mode::ReadWrite, result));
    ASSERT_EQ(result, 0);
    ASSERT_EQ(stream->Write(reinterpret_cast<const unsigned char*>(model.data()), 1000), 1000);
    ASSERT_EQ(stream->Seek(0, CStream::Begin), 0);
    int64_t position = 0;
    int step = 0;
    for (const auto& s : steps) {
        SCOPED_TRACE("step " + std::to_string(step++));
        switch (s.op) {
        case Read: {
            std::string out(size_t(s.value), '\0');
            const int64_t expected = std::min<int64_t>(s.value, int64_t(model.size()) - position);
            ASSERT_EQ(stream->Read(reinterpret_cast<unsigned char*>(out.data()), int32_t(s.value)), expected);
            EXPECT_EQ(out.substr(0, size_t(expected)), model.substr(size_t(position), size_t(expected)));
            position += expected;
            break;
        }
        case SeekBegin:
        case SeekCurrent:
        case SeekEnd: {
            const CStream::SeekOrigin origin =
                s.op == SeekBegin ? CStream::Begin : s.op == SeekCurrent ? CStream::Current : CStream::End;
            int64_t reached = -1;
            ASSERT_EQ(stream->Seek(s.value, origin, &reached), 0);
            position = s.op == SeekBegin ? s.value : s.op == SeekCurrent ? position + s.value
                                                                          : int64_t(model.size()) + s.value;
            EXPECT_EQ(reached, position);
            break;
        }
        case Write: {
            const std::string bytes(size_t(s.value), char('a' + step));
            ASSERT_EQ(stream->Write(reinterpret_cast<const unsigned char*>(bytes.data()), int32_t(s.value)),
                      s.value);
            model.resize(std::max(model.size(), size_t(position + s.value)));
            model.replace(size_t(position), bytes.size(), bytes);
            position += s.value;
            break;
        }
        case Available:
            EXPECT_EQ(stream->GetAvailableLength(), int64_t(model.size()));
            break;
        }
        EXPECT_EQ(stream->GetPosition(), position);
    }
    EXPECT_EQ(VekTest::ReadFile(path), model);
}
