// Indexing a one-hour MP4: every sample of 60 fps H.264 (a sync picture
// every 60, two B pictures between anchors, composition offsets) and 48 kHz
// AAC, about 385,000 samples. The library: CContainerReader::Create on the
// path, BeginIndex, then every sample of every track handed out
// (Read*Sample, no data). libavformat: avformat_open_input, which builds its
// whole index, alone and followed by avformat_find_stream_info. One
// process, passes alternating, the file's tables in the page cache.
//
// Besides time, the heap each side still holds once the file is indexed,
// per sample (glibc's count of bytes in use, small and mapped blocks).
//
// The file is written with the tests' MP4 writer into a fresh temporary
// folder and removed at exit. Its payload is a hole: the file is about
// 4.5 GB but sparse. VEK_MOV_BENCH_TINY=1 writes samples a thousandth of
// the size instead.
#include <vek/Vek.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"
#include "BenchMovieFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <malloc.h>
#include <stdlib.h>
#include <time.h>

#if VEK_BENCH_HAVE_AVFORMAT
extern "C" {
#include <libavformat/avformat.h>
}
#endif

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

constexpr uint32_t kGops = 3600;          // an hour of one-second groups
constexpr uint32_t kGopFrames = 60;
constexpr uint32_t kFrameTicks = 256;     // 60 fps in 1/15360 s
constexpr uint32_t kAacSamples = 168750;  // 3600 s of 1024-frame AAC at 48 kHz

// Bytes of the heap in use: small blocks and blocks mapped apart.
int64_t HeapInUse()
{
    const struct mallinfo2 info = ::mallinfo2();
    return int64_t(info.uordblks + info.hblkhd);
}

// A repeatable spread of sizes around 100% (90..110).
uint32_t Spread(uint64_t n, uint32_t size, uint32_t divisor)
{
    const uint32_t percent = 90 + uint32_t(n * 2654435761u >> 24) % 21;
    return std::max<uint32_t>(size / divisor * percent / 100, 1);
}

Mp4Movie OneHour(uint32_t divisor)
{
    Mp4Track video;
    video.timescale = 15360;
    video.width = 1920;
    video.height = 1080;
    video.samplesPerChunk = 30;
    video.sampleEntries = {Mp4Avc1080pSampleEntry()};
    const std::vector<Mp4GopPicture> gop = Mp4Gop(kGopFrames, 2);
    uint64_t n = 0;
    for (uint32_t g = 0; g < kGops; ++g)
        for (const Mp4GopPicture& picture : gop) {
            const uint32_t size = picture.kind == Mp4Picture::Sync ? 120000 : picture.kind == Mp4Picture::Anchor ? 30000 : 10000;
            video.Add(Spread(n++, size, divisor), kFrameTicks,
                      picture.compositionFrames * int32_t(kFrameTicks), picture.kind == Mp4Picture::Sync);
        }
    Mp4Movie movie;
    // Presentation from the first picture shown, as encoders write it.
    video.edits = {{int64_t(kGops) * movie.timescale, gop[0].compositionFrames * int64_t(kFrameTicks)}};

    Mp4Track audio;
    audio.handler = "soun";
    audio.timescale = 48000;
    audio.samplesPerChunk = 24;
    audio.sampleEntries = {Mp4AacSampleEntry(2, 48000)};
    for (uint32_t i = 0; i < kAacSamples; ++i)
        audio.Add(Spread(i, 370, divisor), 1024);

    movie.payload = Mp4Payload::Sparse;
    movie.tracks = {std::move(video), std::move(audio)};
    return movie;
}

// The one-hour movie, written once per process, its tables read back once
// so that every pass finds them cached.
VekBench::BenchMovieFile& BenchFile()
{
    static VekBench::BenchMovieFile& file = []() -> VekBench::BenchMovieFile& {
        const char* tiny = std::getenv("VEK_MOV_BENCH_TINY");
        const Mp4Movie movie = OneHour(tiny && *tiny == '1' ? 1000 : 1);
        static VekBench::BenchMovieFile written("one-hour.mp4", movie);
        if (written.Error().empty()) {
            std::ifstream in(written.Path(), std::ios::binary);
            std::vector<char> header(movie.HeaderBytes());
            in.read(header.data(), std::streamsize(header.size()));
            std::fprintf(stderr, "MovIndexBench: %s, %lld samples, %.2f GB (sparse), tables %.1f MB\n",
                         written.Path().c_str(), static_cast<long long>(written.Samples()),
                         double(written.Size()) / 1e9, double(header.size()) / 1e6);
        }
        return written;
    }();
    return file;
}

// ---------------------------------------------------------------- the two sides

struct Indexed {
    int64_t samples = -1; // -1: failed
    int64_t heapBytes = 0; // held once indexed
};

// Registers the library's MP4 and QuickTime readers where it has them;
// false when it has neither yet.
template <typename Inventory>
bool AddMp4Readers()
{
    bool added = false;
    if constexpr (requires { Inventory::AddMpeg4ContainerReader(""); })
        added = Inventory::AddMpeg4ContainerReader("MovIndexBench") >= 0 || added;
    if constexpr (requires { Inventory::AddMovContainerReader(""); })
        added = Inventory::AddMovContainerReader("MovIndexBench") >= 0 || added;
    return added;
}

bool VekHasReader()
{
    static const bool registered = AddMp4Readers<ContainerReaderInventory>();
    return registered;
}

// Hands out every sample of every track; false on a failure.
bool ReadEverySample(CContainerReader* reader, int64_t& samples)
{
    for (int32_t track = 0; track < reader->GetVideoMediaCount(); ++track)
        for (;;) {
            CVideoSample* next = nullptr;
            const int result = reader->ReadVideoSample(track, next);
            RObject<CVideoSample> sample(next);
            if (result < 0)
                return false;
            if (!sample)
                break;
            ++samples;
        }
    for (int32_t track = 0; track < reader->GetAudioMediaCount(); ++track)
        for (;;) {
            CAudioSample* next = nullptr;
            const int result = reader->ReadAudioSample(track, next);
            RObject<CAudioSample> sample(next);
            if (result < 0)
                return false;
            if (!sample)
                break;
            ++samples;
        }
    return true;
}

// Opens and indexes the file; with `handOut`, also hands out every sample
// (without it the count is the tracks' own, read after the heap is taken).
Indexed IndexWithVek(const std::string& file, bool handOut = true)
{
    Indexed indexed;
    const int64_t heapBefore = HeapInUse();
    RObject<CString> path(CString::Create(file.c_str()));
    RObject<CContainerReader> reader(VekHasReader() && path ? CContainerReader::Create(path) : nullptr);
    if (!reader || reader->BeginIndex() < 0)
        return indexed;
    if (!handOut) {
        indexed.heapBytes = HeapInUse() - heapBefore;
        indexed.samples = 0;
        return indexed;
    }
    int64_t samples = 0;
    if (!ReadEverySample(reader, samples))
        return indexed;
    indexed.heapBytes = HeapInUse() - heapBefore;
    indexed.samples = samples;
    return indexed;
}

#if VEK_BENCH_HAVE_AVFORMAT
// Index entries of every stream once opened (and the stream facts found).
Indexed IndexWithLibavformat(const std::string& file, bool findStreamInfo)
{
    Indexed indexed;
    const int64_t heapBefore = HeapInUse();
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, file.c_str(), nullptr, nullptr) < 0)
        return indexed;
    if (!findStreamInfo || avformat_find_stream_info(context, nullptr) >= 0) {
        indexed.samples = 0;
        for (unsigned i = 0; i < context->nb_streams; ++i)
            indexed.samples += avformat_index_get_entries_count(context->streams[i]);
        indexed.heapBytes = HeapInUse() - heapBefore;
    }
    avformat_close_input(&context);
    return indexed;
}
#endif

double ThreadSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// ---------------------------------------------------------------- benchmarks

void VekIndex(benchmark::State& state)
{
    VekBench::BenchMovieFile& file = BenchFile();
    if (!file.Error().empty())
        return state.SkipWithError(file.Error().c_str());
    if (!VekHasReader())
        return state.SkipWithError("no reader: the library has no MP4 reader to register yet");
    Indexed indexed;
    for (auto _ : state)
        if ((indexed = IndexWithVek(file.Path())).samples < 0)
            return state.SkipWithError("the library cannot index the file");
    state.counters["samples"] = double(indexed.samples);
    state.counters["heap_B_per_sample"] = double(indexed.heapBytes) / double(std::max<int64_t>(indexed.samples, 1));
}
BENCHMARK(VekIndex)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

#if VEK_BENCH_HAVE_AVFORMAT
// Each iteration is one pass of every method, the order rotating from pass
// to pass so that all meet the same cache and clock conditions; the
// counters give each method's best pass, wall and CPU time of this thread,
// the ratios (above 1: the library is faster) and the heap per sample.
void AlternatingPasses(benchmark::State& state)
{
    VekBench::BenchMovieFile& file = BenchFile();
    if (!file.Error().empty())
        return state.SkipWithError(file.Error().c_str());
    enum { Vek, VekOpen, Open, OpenAndInfo, Methods };
    static const char* const names[Methods] = {"vek", "vek open", "libavformat open", "libavformat open+info"};
    // The zero payload makes the H.264 decoder of find_stream_info complain
    // at every picture it tries.
    av_log_set_level(AV_LOG_QUIET);
    const bool vekReady = VekHasReader();
    if (!vekReady)
        std::fprintf(stderr, "MovIndexBench: no reader: the library has no MP4 reader to register yet; "
                             "libavformat runs alone\n");
    double best[Methods] = {1e30, 1e30, 1e30, 1e30};
    double bestCpu[Methods] = {1e30, 1e30, 1e30, 1e30};
    Indexed last[Methods];
    int pass = 0;
    for (auto _ : state) {
        for (int step = 0; step < Methods; ++step) {
            const int method = (pass + step) % Methods;
            if ((method == Vek || method == VekOpen) && !vekReady)
                continue;
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = ThreadSeconds();
            if (method == Vek || method == VekOpen)
                last[method] = IndexWithVek(file.Path(), method == Vek);
            else
                last[method] = IndexWithLibavformat(file.Path(), method == OpenAndInfo);
            best[method] = std::min(best[method], std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
            bestCpu[method] = std::min(bestCpu[method], ThreadSeconds() - cpuStart);
            if (method != VekOpen && last[method].samples != file.Samples()) {
                char text[160];
                std::snprintf(text, sizeof text, "%s indexed %lld samples, not %lld", names[method],
                              static_cast<long long>(last[method].samples), static_cast<long long>(file.Samples()));
                return state.SkipWithError(text);
            }
        }
        ++pass;
    }
    const double samples = double(file.Samples());
    state.counters["samples"] = samples;
    state.counters["lavf_open_ms"] = best[Open] * 1e3;
    state.counters["lavf_info_ms"] = best[OpenAndInfo] * 1e3;
    state.counters["cpu_lavf_open_ms"] = bestCpu[Open] * 1e3;
    state.counters["lavf_heap_B_per_sample"] = double(last[OpenAndInfo].heapBytes) / samples;
    state.counters["lavf_open_heap_B_per_sample"] = double(last[Open].heapBytes) / samples;
    if (!vekReady)
        return;
    state.counters["vek_ms"] = best[Vek] * 1e3;
    state.counters["cpu_vek_ms"] = bestCpu[Vek] * 1e3;
    state.counters["vek_heap_B_per_sample"] = double(last[Vek].heapBytes) / samples;
    state.counters["vek_vs_lavf_open"] = best[Open] / best[Vek];
    state.counters["vek_vs_lavf_info"] = best[OpenAndInfo] / best[Vek];
    state.counters["cpu_vek_vs_lavf_open"] = bestCpu[Open] / bestCpu[Vek];
    // Opening alone: the sample tables read and checked, nothing handed out.
    state.counters["vek_open_ms"] = best[VekOpen] * 1e3;
    state.counters["vek_open_vs_lavf_open"] = best[Open] / best[VekOpen];
    state.counters["vek_open_vs_lavf_info"] = best[OpenAndInfo] / best[VekOpen];
    state.counters["vek_open_heap_B_per_sample"] = double(last[VekOpen].heapBytes) / samples;
}
BENCHMARK(AlternatingPasses)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
#endif

} // namespace
