// Sample tables and movie fragments from arbitrary bytes: the input is read
// as the payload of an 'stbl', then of a 'moof' (into fresh tables), then as
// segment index boxes. Every table must walk without a crash, give as many
// samples as it counts (up to a cap, since a few bytes can describe billions
// of constant-size samples), keep every sample inside the file size it was
// given, and agree with a seek to the same sample.
#include <vek/containers/readers/mov/MovBox.h>
#include <vek/containers/readers/mov/MovFragment.h>
#include <vek/containers/readers/mov/MovSampleTable.h>
#include <vek/containers/readers/mov/MovSegmentIndex.h>
#include <vek/core/Result.h>

#include <cstdint>
#include <cstdlib>

using namespace Quorvex::Vek;

namespace {

constexpr uint32_t WalkCap = 1 << 16;

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

bool Same(const MovSample& a, const MovSample& b)
{
    return a.position == b.position && a.size == b.size && a.decodeTime == b.decodeTime &&
           a.duration == b.duration && a.compositionOffset == b.compositionOffset &&
           a.descriptionIndex == b.descriptionIndex && a.sync == b.sync && a.dependency == b.dependency;
}

void CheckTable(const MovSampleTable& table, int64_t fileSize, bool bounded)
{
    MovSampleTable::Cursor cursor(table);
    MovSample sample, probe;
    uint32_t walked = 0;
    while (walked < WalkCap && cursor.Next(sample) == 0) {
        if (bounded)
            Require(sample.position >= 0 && sample.size <= fileSize - sample.position);
        if (walked % 97 == 0) {
            MovSampleTable::Cursor seeker(table);
            Require(seeker.Seek(walked) == 0);
            Require(seeker.Next(probe) == 0 && Same(sample, probe));
        }
        ++walked;
    }
    Require(walked == std::min(table.GetSampleCount(), WalkCap));
    const uint32_t count = table.GetSampleCount();
    if (count > 0) {
        Require(cursor.Seek(count - 1) == 0);
        Require(cursor.Next(sample) == 0);
        Require(cursor.Next(sample) == 1);
    }
    Require(cursor.Seek(count) == 0);
    Require(count == UINT32_MAX || cursor.Seek(count + 1) == RESULT_ARGUMENT_OUT_OF_RANGE);
    for (uint32_t i = 0; i < table.GetChunkCount(); ++i) {
        MovChunk chunk;
        Require(table.GetChunk(i, chunk) == 0);
    }
    (void)table.GetDuration();
    (void)table.GetCompositionToDecodeShift();
}

MovBox BoxOf(uint32_t type, const uint8_t* data, size_t size, int64_t fileOffset)
{
    MovBox box;
    box.type = type;
    box.payload = data;
    box.size = size;
    box.fileOffset = fileOffset;
    box.headerSize = 8;
    return box;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The file is taken as a little larger than the input, so that some
    // chunk offsets fall inside and some past the end.
    const int64_t fileSize = int64_t(size) * 16 + 64;

    MovSampleTable movie;
    if (movie.Read(BoxOf(Four("stbl"), data, size, 0), fileSize) == 0)
        CheckTable(movie, fileSize, true);

    MovSampleTable first, second;
    MovFragmentTrack tracks[2] = {{1, {1, 10, 4, 0x10000}, &first}, {2, {}, &second}};
    (void)ReadMovieFragment(BoxOf(Four("moof"), data, size, 16), tracks, 2, fileSize);
    CheckTable(first, fileSize, true);
    CheckTable(second, fileSize, true);
    (void)ReadMovieExtends(BoxOf(Four("mvex"), data, size, 0), tracks, 2);

    MovSegmentIndex index;
    (void)ReadSegmentIndex(BoxOf(Four("sidx"), data, size, 0), index);
    MovTrackRandomAccess access;
    (void)ReadTrackFragmentRandomAccess(BoxOf(Four("tfra"), data, size, 0), access);
    uint32_t mfraSize = 0;
    (void)ReadMovieFragmentRandomAccessOffset(BoxOf(Four("mfro"), data, size, 0), mfraSize);
    return 0;
}
