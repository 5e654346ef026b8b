// Allocation-failure walks over streams, URIs and container contexts.
#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CContainerDirectoryContext.h>
#include <vek/io/CMemoryStream.h>
#include <vek/io/CUri.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/AllocationWalk.h"
#include "support/TestSupport.h"

using namespace Quorvex::Vek;

#if VEK_FAULT_INJECTION
namespace {

bool NullOrText(CString* made, const char* expected)
{
    RObject<CString> held(made);
    return !held || std::strcmp(held->GetChars(), expected) == 0;
}

} // namespace

TEST(AllocationFailure, Streams)
{
    VekTest::WalkAllocationFailures("growing memory stream", [] {
        RObject<CMemoryStream> stream(new (fallible) CMemoryStream());
        if (!stream)
            return true;
        std::vector<unsigned char> bytes(1000);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = uint8_t(i);
        int64_t written = 0;
        for (int i = 0; i < 8; ++i) {
            const int result = stream->Write(bytes.data(), 1000);
            if (result < 0) {
                // A failed growth leaves what was written in place.
                if (result != RESULT_OUT_OF_MEMORY || stream->GetLength() != written)
                    return false;
                continue;
            }
            written += result;
        }
        return std::memcmp(stream->GetData(), bytes.data(), size_t(std::min<int64_t>(written, 1000))) == 0;
    });
    VekTest::WalkAllocationFailures("buffered stream", [] {
        RObject<CMemoryStream> inner(new (fallible) CMemoryStream());
        if (!inner)
            return true;
        std::vector<unsigned char> bytes(4096, 0x5A);
        if (inner->Write(bytes.data(), 4096) != 4096)
            return true;
        RObject<CBufferedStream> cache(new (fallible) CBufferedStream(inner, 256, 4));
        if (!cache)
            return true;
        std::vector<unsigned char> out(700);
        const int got = cache->Read(out.data(), 700);
        // Blocks that could not be made leave the stream reading straight
        // through; either way the bytes are right.
        return got == 700 && out[0] == 0x5A && out[699] == 0x5A;
    });
}

TEST(AllocationFailure, UriCracking)
{
    VekTest::WalkAllocationFailures("crack", [] {
        RObject<CUri> uri(CUri::CreateWithUrl("http://user@media.example.com:8080/clips/a%20b.mov?t=10#frag"));
        if (!uri)
            return true;
        return NullOrText(uri->GetHost(), "media.example.com") && NullOrText(uri->GetQuery(), "t=10") &&
               NullOrText(uri->GetPath(), "/clips/a b.mov");
    });
    VekTest::WalkAllocationFailures("escape", [] {
        RObject<CString> text(CString::Create("a b%c\xC3\xA9"));
        if (!text)
            return true;
        return NullOrText(CUri::EscapeDataString(text, 0), "a%20b%c%C3%A9");
    });
}

TEST(AllocationFailure, Contexts)
{
    VekTest::TempDir dir;
    ASSERT_TRUE(VekTest::WriteFile(dir.File("clip.wav"), "RIFF----WAVE"));
    VekTest::WalkAllocationFailures("open a reader's file", [&dir] {
        RObject<CString> path(CString::Create(dir.Path().c_str()));
        RObject<CString> name(CString::Create("clip.wav"));
        if (!path || !name)
            return true;
        RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::Create(path));
        if (!context)
            return true;
        CStream* raw = nullptr;
        const int result = context->OpenStream(CContainerContext::ReaderSettings{64, 0}, name, raw);
        RObject<CStream> stream(raw);
        if (result < 0)
            return result == RESULT_OUT_OF_MEMORY && !raw;
        unsigned char head[4] = {};
        return stream->Read(head, 4) == 4 && std::memcmp(head, "RIFF", 4) == 0;
    });
}
#else
TEST(AllocationFailure, NeedsTheHook)
{
    VEK_REQUIRE_FAULT_INJECTION();
}
#endif
