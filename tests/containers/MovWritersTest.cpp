// The second writers themselves: each makes the kind of file it is asked
// for (plain or fragmented), with both streams, or the reader tests that use
// it would compare against the wrong thing.
#include "MovAtomWalk.h"
#include "MovWriters.h"

#include <gtest/gtest.h>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct WriterCase {
    const char* muxer;
    bool fragmented;
};

void ExpectLayout(const std::string& file, const std::string& path, bool fragmented)
{
    ASSERT_FALSE(file.empty());
    MovBox box;
    EXPECT_TRUE(FindPath(file, "moov", box));
    EXPECT_EQ(FindPath(file, "moov/mvex", box), fragmented);
    EXPECT_EQ(FindPath(file, "moof", box), fragmented);
    const std::string streams = Probe(path, "-show_streams");
    EXPECT_EQ(JsonValues(streams, "codec_name"), (std::vector<std::string>{"h264", "aac"}));
}

TEST(MovWriters, GstreamerWritesPlainAndFragmentedFiles)
{
    VEK_REQUIRE_GSTREAMER();
    const WriterCase cases[] = {{"qtmux", false}, {"mp4mux", false}, {"mp4mux fragment-duration=200", true}};
    TempDir dir;
    const std::string source = WriterSourceMatroska(dir);
    ASSERT_FALSE(source.empty());
    for (const WriterCase& c : cases) {
        SCOPED_TRACE(c.muxer);
        ExpectLayout(GstMux(dir, source, c.muxer, "out.bin"), dir.File("out.bin"), c.fragmented);
    }
}

TEST(MovWriters, Mp4BoxWritesPlainAndFragmentedFiles)
{
    VEK_REQUIRE_MP4BOX();
    TempDir dir;
    ExpectLayout(Mp4BoxMux(dir, "", "plain.mp4"), dir.File("plain.mp4"), false);
    ExpectLayout(Mp4BoxMux(dir, "-frag 200", "fragments.mp4"), dir.File("fragments.mp4"), true);
}

} // namespace
