// Container contexts against real files in a scratch folder.
#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/TestSupport.h"

#include <vek/core/Result.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CContainerDirectoryContext.h>
#include <vek/io/CContainerMultiFileContext.h>
#include <vek/io/CContainerStreamContext.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/CMemoryStream.h>
#include <vek/io/ContainerContext.h>

#include <algorithm>
#include <filesystem>
#include <string>

using namespace Quorvex::Vek;
using Settings = CContainerContext::ReaderSettings;

namespace {

RObject<CString> Text(const std::string& text)
{
    return RObject<CString>(new CString(text.c_str()));
}

std::string Str(CString* text)
{
    return text ? std::string(text->GetChars()) : std::string("(null)");
}

// Reads up to `limit` bytes: a stream with a read wait time would wait at
// the end of the file, so callers that set one stop at the known length.
std::string ReadAll(CStream* stream, size_t limit = size_t(-1))
{
    std::string bytes;
    unsigned char buffer[7]; // small, so reads cross buffer blocks
    while (bytes.size() < limit) {
        const size_t want = std::min(sizeof(buffer), limit - bytes.size());
        const int n = stream->Read(buffer, int32_t(want));
        if (n <= 0)
            break;
        bytes.append(reinterpret_cast<char*>(buffer), size_t(n));
    }
    return bytes;
}

int32_t ReadWaitTimeOf(CStream* stream)
{
    int32_t value = -1;
    const int status = stream->Control(CFileStream::GetReadTimeout, 4, reinterpret_cast<unsigned char*>(&value));
    return status < 0 ? status : value;
}

} // namespace

TEST(ContainerContextTest, DirectoryContextOpensReaderFilesAsConfigured)
{
    VekTest::TempDir dir;
    const std::string content = "RIFF....WAVEfmt some bytes that span several tiny buffer blocks";
    ASSERT_TRUE(VekTest::WriteFile(dir.File("clip.wav"), content));
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::Create(Text(dir.Path())));
    ASSERT_TRUE(context);
    EXPECT_TRUE(context->IsType(CContainerDirectoryContext::Type));
    EXPECT_EQ(Str(RObject<CString>(context->GetPath())), dir.Path());

    struct {
        Settings settings;
        bool buffered;
        int32_t wait;
    } cases[] = {
        {{0, 0}, false, 0},
        {{-5, 250}, false, 250},
        {{1, 0}, true, 0},
        {{0, 3600000}, false, 3600000},
        // A block read past the end waits for growth, so keep this wait short.
        {{16, 200}, true, 200},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "buffer " << c.settings.bufferSize << " wait " << c.settings.readWaitTime);
        CStream* raw = nullptr;
        ASSERT_EQ(context->OpenStream(c.settings, Text("clip.wav"), raw), RESULT_OK);
        RObject<CStream> stream(raw);
        EXPECT_EQ(stream->IsType(CBufferedStream::Type), c.buffered);
        EXPECT_EQ(stream->GetReferenceCount(), 1);
        EXPECT_EQ(ReadWaitTimeOf(stream), c.wait);
        EXPECT_EQ(ReadAll(stream, content.size()), content);
    }
}

TEST(ContainerContextTest, DirectoryContextReportsOpenFailures)
{
    VekTest::TempDir dir;
    ASSERT_TRUE(VekTest::WriteFile(dir.File("present.mov"), "x"));
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::Create(Text(dir.Path())));
    struct {
        const char* name;
        Settings settings;
        int result;
    } cases[] = {
        {nullptr, {0, 0}, RESULT_ARGUMENT_NULL},
        {"missing.mov", {0, 0}, RESULT_PATH_DOES_NOT_EXIST},
        {"present.mov", {0, 3600001}, RESULT_ARGUMENT_OUT_OF_RANGE},
        {"present.mov", {4096, 3600001}, RESULT_ARGUMENT_OUT_OF_RANGE},
    };
    for (const auto& c : cases) {
        CStream* raw = nullptr;
        RObject<CString> name(c.name ? Text(c.name) : RObject<CString>());
        EXPECT_EQ(context->OpenStream(c.settings, name, raw), c.result) << (c.name ? c.name : "(null)");
        EXPECT_EQ(raw, nullptr);
    }
}

TEST(ContainerContextTest, WriterFilesAreCreatedOrTruncatedForTheOwner)
{
    VekTest::TempDir dir;
    ASSERT_TRUE(VekTest::WriteFile(dir.File("old.mxf"), "a much longer previous content"));
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::Create(Text(dir.Path())));
    for (const char* name : {"new.mxf", "old.mxf"}) {
        CStream* raw = nullptr;
        ASSERT_EQ(context->OpenStream(CContainerContext::WriterSettings{}, Text(name), raw), RESULT_OK) << name;
        RObject<CStream> stream(raw);
        EXPECT_TRUE(stream->CanWrite());
        EXPECT_EQ(stream->Write(reinterpret_cast<const unsigned char*>("head"), 4), 4);
        stream->Close();
        EXPECT_EQ(VekTest::ReadFile(dir.File(name)), "head") << name;
        if (!VEK_PLATFORM_WINDOWS && std::string(name) == "new.mxf") {
            const auto perms = std::filesystem::status(dir.File(name)).permissions();
            EXPECT_EQ(perms & std::filesystem::perms::all,
                      std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        }
    }
    CStream* raw = nullptr;
    EXPECT_EQ(context->OpenStream(CContainerContext::WriterSettings{}, nullptr, raw), RESULT_ARGUMENT_NULL);
}

TEST(ContainerContextTest, FileListWalksNamesAndResolvesPaths)
{
    VekTest::TempDir dir;
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::Create(Text(dir.Path())));
    EXPECT_EQ(context->GetCurrentFileName(), nullptr);
    EXPECT_EQ(context->GetCurrentFilePath(), nullptr);
    EXPECT_FALSE(context->MoveNextFile());
    EXPECT_EQ(context->AddFileName(nullptr), RESULT_ARGUMENT_NULL);

    ASSERT_EQ(context->AddFileName(Text("a.mxf")), RESULT_OK);
    ASSERT_EQ(context->AddFilePath(Text(dir.File("b.mxf"))), RESULT_OK);
    const std::string elsewhere = VEK_PLATFORM_WINDOWS ? "C:\\other\\c.mxf" : "/other/c.mxf";
    ASSERT_EQ(context->AddFilePath(Text(elsewhere)), RESULT_OK);
    EXPECT_EQ(context->GetFileCount(), 3);

    // Names inside the directory are kept relative; full paths resolve.
    const std::string expected[][2] = {
        {"a.mxf", dir.File("a.mxf")}, {"b.mxf", dir.File("b.mxf")}, {elsewhere, elsewhere}};
    for (int pass = 0; pass < 2; ++pass) {
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(Str(RObject<CString>(context->GetCurrentFileName())), expected[i][0]);
            EXPECT_EQ(Str(RObject<CString>(context->GetCurrentFilePath())), expected[i][1]);
            EXPECT_EQ(context->MoveNextFile(), i < 2);
        }
        EXPECT_EQ(Str(RObject<CString>(context->GetCurrentFileName())), elsewhere);
        context->ResetFiles();
    }

    RObject<CContainerDirectoryContext> forFile(CContainerDirectoryContext::CreateForFile(Text(dir.File("x.wav"))));
    ASSERT_TRUE(forFile);
    EXPECT_EQ(Str(RObject<CString>(forFile->GetCurrentFileName())), "x.wav");
    EXPECT_EQ(Str(RObject<CString>(forFile->GetCurrentFilePath())), dir.File("x.wav"));
    RObject<CContainerDirectoryContext> bare(CContainerDirectoryContext::CreateForFile(Text("bare.wav")));
    ASSERT_TRUE(bare) << "a bare name lies in the current folder";
    EXPECT_EQ(Str(RObject<CString>(bare->GetCurrentFileName())), "bare.wav");
    EXPECT_EQ(Str(RObject<CString>(bare->GetCurrentFilePath())), "./bare.wav");
    EXPECT_EQ(CContainerDirectoryContext::CreateForFile(Text("")), nullptr);
}

TEST(ContainerContextTest, MultiFileContextTagsEntriesAndOpensBesideThem)
{
    VekTest::TempDir dir;
    ASSERT_TRUE(VekTest::WriteFile(dir.File("video.mxf"), "video essence"));
    ASSERT_TRUE(VekTest::WriteFile(dir.File("audio.mxf"), "audio essence"));
    using Info = CContainerMultiFileContext::CMultiFileCtxInfo;
    RObject<CContainerMultiFileContext> context(CContainerMultiFileContext::Create());
    ASSERT_TRUE(context);
    ASSERT_EQ(context->AddFullFileName(Text(dir.File("video.mxf")), Info::Video), RESULT_OK);
    ASSERT_EQ(context->AddFullFileName(Text(dir.File("audio.mxf")), Info::Audio), RESULT_OK);
    ASSERT_EQ(context->AddFullFileName(Text(dir.File("audio2.mxf")), Info::Audio), RESULT_OK);
    EXPECT_EQ(context->AddFullFileName(nullptr, Info::Audio), RESULT_ARGUMENT_NULL);

    RObject<CArray<Info>> list(context->GetContextTypeList());
    ASSERT_TRUE(list);
    ASSERT_EQ(list->GetCount(), 3);
    EXPECT_EQ(list->Get(1)->GetKind(), Info::Audio);
    EXPECT_EQ(Str(list->Get(2)->GetFileName()), dir.File("audio2.mxf"));

    Info* found = nullptr;
    ASSERT_TRUE(context->GetFirstCtxInfoOfType(Info::Audio, found));
    RObject<Info> audio(found);
    EXPECT_EQ(Str(audio->GetFileName()), dir.File("audio.mxf"));
    EXPECT_FALSE(context->GetFirstCtxInfoOfType(Info::Subtitle, found));
    EXPECT_EQ(found, nullptr);

    // A relative name is looked for beside the current file.
    CStream* raw = nullptr;
    ASSERT_EQ(context->OpenStream(Settings{0, 0}, Text("audio.mxf"), raw), RESULT_OK);
    RObject<CStream> stream(raw);
    EXPECT_EQ(ReadAll(stream), "audio essence");
    ASSERT_EQ(context->OpenStream(Settings{4096, 0}, Text(dir.File("video.mxf")), raw), RESULT_OK);
    RObject<CStream> video(raw);
    EXPECT_EQ(ReadAll(video), "video essence");
}

TEST(ContainerContextTest, NamesThatLeaveTheFolderAreRefused)
{
    // <dir>/media is the context's folder; <dir>/outside.wav lies beside it.
    VekTest::TempDir dir;
    const std::string folder = dir.File("media");
    std::filesystem::create_directories(folder + "/sub");
    ASSERT_TRUE(VekTest::WriteFile(folder + "/clip.wav", "inside"));
    ASSERT_TRUE(VekTest::WriteFile(folder + "/sub/inner.wav", "inner"));
    ASSERT_TRUE(VekTest::WriteFile(dir.File("outside.wav"), "outside"));
    const std::string outside = dir.File("outside.wav");

    struct {
        std::string name;
        int result; // with the default: names stay inside the folder
    } cases[] = {
        {"clip.wav", RESULT_OK},
        {"./clip.wav", RESULT_OK},
        {"sub/inner.wav", RESULT_OK},
        {"sub\\..\\clip.wav", RESULT_ACCESS_DENIED},
        {"../outside.wav", RESULT_ACCESS_DENIED},
        {"..\\outside.wav", RESULT_ACCESS_DENIED},
        {"sub/../../outside.wav", RESULT_ACCESS_DENIED},
        {"sub/..", RESULT_ACCESS_DENIED},
        {"..", RESULT_ACCESS_DENIED},
        {outside, RESULT_ACCESS_DENIED},
        {"/etc/passwd", RESULT_ACCESS_DENIED},
        {"\\\\server\\share\\x.wav", RESULT_ACCESS_DENIED},
        {"//server/share/x.wav", RESULT_ACCESS_DENIED},
        {"\\x.wav", RESULT_ACCESS_DENIED},
        {"C:\\x.wav", RESULT_ACCESS_DENIED},
        {"c:/x.wav", RESULT_ACCESS_DENIED},
        {"C:x.wav", RESULT_ACCESS_DENIED},
        // Windows trims dots and spaces that end a segment, making these "..".
        {"...", RESULT_ACCESS_DENIED},
        {".. /outside.wav", RESULT_ACCESS_DENIED},
        {"sub/. ./outside.wav", RESULT_ACCESS_DENIED},
        // Dots that are not a ".." segment are ordinary names.
        {".", RESULT_PATH_IS_DIRECTORY},
        {"..clip.wav", RESULT_PATH_DOES_NOT_EXIST},
        {"clip..wav", RESULT_PATH_DOES_NOT_EXIST},
        {"sub/..inner", RESULT_PATH_DOES_NOT_EXIST},
    };
    RObject<CContainerDirectoryContext> directory(CContainerDirectoryContext::Create(Text(folder)));
    ASSERT_FALSE(directory->GetAllowNamesOutsideFolder());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CStream* raw = nullptr;
        EXPECT_EQ(directory->OpenStream(Settings{0, 0}, Text(c.name), raw), c.result);
        RObject<CStream> stream(raw);
        EXPECT_EQ(raw != nullptr, c.result == RESULT_OK);
        if (c.result == RESULT_ACCESS_DENIED) {
            EXPECT_EQ(directory->OpenStream(CContainerContext::WriterSettings{}, Text(c.name), raw),
                      RESULT_ACCESS_DENIED);
            EXPECT_EQ(raw, nullptr);
        }
    }
    EXPECT_EQ(VekTest::ReadFile(outside), "outside") << "no writer reached the file beside the folder";

    // The host may allow it, and names it listed itself are its own choice.
    CStream* raw = nullptr;
    directory->SetAllowNamesOutsideFolder(true);
    ASSERT_EQ(directory->OpenStream(Settings{0, 0}, Text("../outside.wav"), raw), RESULT_OK);
    EXPECT_EQ(ReadAll(RObject<CStream>(raw)), "outside");
    directory->SetAllowNamesOutsideFolder(false);
    ASSERT_EQ(directory->AddFilePath(Text(outside)), RESULT_OK);
    ASSERT_EQ(directory->OpenStream(Settings{0, 0}, Text(outside), raw), RESULT_OK);
    EXPECT_EQ(ReadAll(RObject<CStream>(raw)), "outside");

    // A multi-file context confines names to the folder of its current file.
    using Info = CContainerMultiFileContext::CMultiFileCtxInfo;
    RObject<CContainerMultiFileContext> files(CContainerMultiFileContext::Create());
    ASSERT_EQ(files->AddFullFileName(Text(folder + "/clip.wav"), Info::Audio), RESULT_OK);
    EXPECT_EQ(files->OpenStream(Settings{0, 0}, Text("../outside.wav"), raw), RESULT_ACCESS_DENIED);
    EXPECT_EQ(files->OpenStream(Settings{0, 0}, Text(outside), raw), RESULT_ACCESS_DENIED);
    ASSERT_EQ(files->OpenStream(Settings{0, 0}, Text("sub/inner.wav"), raw), RESULT_OK);
    EXPECT_EQ(ReadAll(RObject<CStream>(raw)), "inner");
    ASSERT_EQ(files->OpenStream(Settings{0, 0}, Text(folder + "/clip.wav"), raw), RESULT_OK);
    EXPECT_EQ(ReadAll(RObject<CStream>(raw)), "inside");

    // So does the public handle, until told otherwise.
    ContainerContext handle = ContainerContext::CreateForDirectory(folder.c_str());
    Stream stream;
    EXPECT_EQ(handle.OpenReadStream("../outside.wav", 0, 0, stream), RESULT_ACCESS_DENIED);
    handle.SetAllowNamesOutsideFolder(true);
    ASSERT_EQ(handle.OpenReadStream("../outside.wav", 0, 0, stream), RESULT_OK);
    EXPECT_EQ(ReadAll(stream), "outside");
}

TEST(ContainerContextTest, RefusalLogNamesTheName)
{
    VekTest::TempDir dir;
    VekTest::LogCapture log(1);
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::Create(Text(dir.Path())));
    CStream* raw = nullptr;
    EXPECT_EQ(context->OpenStream(Settings{0, 0}, Text("../a\nb.wav"), raw), RESULT_ACCESS_DENIED);
    EXPECT_EQ(log.Count("CContainerContext::OpenStream: name \"../a?b.wav\" leaves the context's folder\n"), 1u)
        << log.Text();
    const std::string huge = "../" + std::string(1000, 'x');
    EXPECT_EQ(context->OpenStream(Settings{0, 0}, Text(huge), raw), RESULT_ACCESS_DENIED);
    EXPECT_EQ(log.Count("\"../" + std::string(253, 'x') + "\"... leaves"), 1u) << log.Text();
}

TEST(ContainerContextTest, StreamContextHandsOutItsOwnStream)
{
    RObject<CMemoryStream> memory(new CMemoryStream());
    RObject<CContainerStreamContext> context(CContainerStreamContext::Create(memory, Text("live.ts")));
    ASSERT_TRUE(context);
    EXPECT_EQ(CContainerStreamContext::Create(nullptr), nullptr);
    EXPECT_EQ(Str(RObject<CString>(context->GetCurrentFileName())), "live.ts");

    struct {
        const char* name;
        int result;
    } cases[] = {{nullptr, RESULT_OK}, {"", RESULT_OK}, {"live.ts", RESULT_OK}, {"other.ts", RESULT_NOT_SUPPORTED}};
    for (const auto& c : cases) {
        CStream* raw = nullptr;
        RObject<CString> name(c.name ? Text(c.name) : RObject<CString>());
        EXPECT_EQ(context->OpenStream(Settings{4096, 100}, name, raw), c.result) << (c.name ? c.name : "(null)");
        if (c.result == RESULT_OK) {
            EXPECT_EQ(raw, memory.Get());
            raw->Release();
        }
    }
    EXPECT_EQ(memory->GetReferenceCount(), 2); // the test's and the context's
}

TEST(ContainerContextTest, PublicHandleOpensThroughTheContext)
{
    VekTest::TempDir dir;
    ASSERT_TRUE(VekTest::WriteFile(dir.File("clip.aif"), "FORM....AIFF"));
    ContainerContext context = ContainerContext::CreateForFile(dir.File("clip.aif").c_str());
    ASSERT_FALSE(context.IsNull());
    EXPECT_EQ(Str(context.GetCurrentFilePath()), dir.File("clip.aif"));
    Stream stream;
    ASSERT_EQ(context.OpenReadStream("clip.aif", 512, 0, stream), RESULT_OK);
    EXPECT_EQ(ReadAll(stream), "FORM....AIFF");
    EXPECT_EQ(context.AddFullFileName("x", 0), RESULT_TYPE_MISMATCH);

    Stream untouched;
    EXPECT_EQ(context.OpenReadStream("nothing.aif", 0, 0, untouched), RESULT_PATH_DOES_NOT_EXIST);
    EXPECT_TRUE(untouched.IsNull());
    ContainerContext none;
    EXPECT_EQ(none.OpenWriteStream("x", untouched), RESULT_NULL_POINTER);
    EXPECT_FALSE(none.MoveNextFile());
}
