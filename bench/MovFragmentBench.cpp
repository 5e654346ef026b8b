// Opening a fragmented recording: a 4 GB MP4 of one hour of 30 fps H.264
// and 48 kHz AAC in 11,250 small fragments (15 samples of each track per
// 'moof'), no 'mfra', written sparse with the tests' MP4 writer.
//
// Methods, alternating pass by pass in one process, the file's headers in
// the page cache:
// - vek first sample: CContainerReader::Create, BeginIndex, the first
//   video sample handed out;
// - vek full index: the same, then every sample of every track handed out
//   (the walk parses every fragment);
// - libavformat open, and open + avformat_find_stream_info.
// Besides time, the bytes each method reads through read(2), from the
// process's own count (/proc/self/io "rchar"), against the file's size.
#include <vek/Vek.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"
#include "BenchMovieFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <stdlib.h>

#if VEK_BENCH_HAVE_AVFORMAT
extern "C" {
#include <libavformat/avformat.h>
}
#endif

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

constexpr uint32_t kFrames = 108000;      // an hour at 30 fps
constexpr uint32_t kFrameTicks = 512;     // 30 fps in 1/15360 s
constexpr uint32_t kAacSamples = 168750;  // 3600 s of 1024-frame AAC at 48 kHz
constexpr uint32_t kFragmentSamples = 15; // per track and fragment

// Bytes this process has read through read(2) and its kin.
int64_t BytesReadByProcess()
{
    std::ifstream io("/proc/self/io");
    std::string key;
    long long value = 0;
    while (io >> key >> value)
        if (key == "rchar:")
            return value;
    return -1;
}

Mp4Movie OneHourOfFragments()
{
    Mp4Track video;
    video.timescale = 15360;
    video.width = 1920;
    video.height = 1080;
    video.sampleEntries = {Mp4Avc1080pSampleEntry()};
    for (uint32_t n = 0; n < kFrames; ++n)
        video.Add(n % 30 == 0 ? 160000 : 33000 + (n * 2654435761u >> 24) % 4000, kFrameTicks, 0, n % 30 == 0);
    Mp4Track audio;
    audio.handler = "soun";
    audio.timescale = 48000;
    audio.sampleEntries = {Mp4AacSampleEntry(2, 48000)};
    for (uint32_t i = 0; i < kAacSamples; ++i)
        audio.Add(370, 1024);
    Mp4Movie movie;
    movie.payload = Mp4Payload::Sparse;
    movie.fragmentSamples = kFragmentSamples;
    movie.tracks = {std::move(video), std::move(audio)};
    return movie;
}

bool RegisterReaders()
{
    static const bool registered = ContainerReaderInventory::AddMpeg4ContainerReader("MovFragmentBench") >= 0;
    return registered;
}

// The recording, written once per process and indexed once, so that every
// pass finds its headers cached.
VekBench::BenchMovieFile& BenchFile()
{
    static VekBench::BenchMovieFile& file = []() -> VekBench::BenchMovieFile& {
        static VekBench::BenchMovieFile written("recording.mp4", OneHourOfFragments());
        if (!written.Error().empty() || !RegisterReaders())
            return written;
        RObject<CString> path(CString::Create(written.Path().c_str()));
        RObject<CContainerReader> reader(CContainerReader::Create(path));
        if (reader && reader->BeginIndex() >= 0)
            for (;;) {
                CVideoSample* next = nullptr;
                RObject<CVideoSample> sample((reader->ReadVideoSample(0, next), next));
                if (!sample)
                    break;
            }
        std::fprintf(stderr, "MovFragmentBench: %s, %lld samples, %.2f GB (sparse)\n", written.Path().c_str(),
                     static_cast<long long>(written.Samples()), double(written.Size()) / 1e9);
        return written;
    }();
    return file;
}

// Samples handed out: 1 for the first-sample method, all for the full index;
// -1 on a failure.
int64_t OpenWithVek(const std::string& file, bool everySample)
{
    RObject<CString> path(CString::Create(file.c_str()));
    RObject<CContainerReader> reader(path ? CContainerReader::Create(path) : nullptr);
    if (!reader || reader->BeginIndex() < 0)
        return -1;
    int64_t samples = 0;
    for (int32_t track = 0; track < reader->GetVideoMediaCount(); ++track)
        for (;;) {
            CVideoSample* next = nullptr;
            const int result = reader->ReadVideoSample(track, next);
            RObject<CVideoSample> sample(next);
            if (result < 0)
                return -1;
            if (!sample)
                break;
            if (++samples == 1 && !everySample)
                return samples;
        }
    for (int32_t track = 0; track < reader->GetAudioMediaCount(); ++track)
        for (;;) {
            CAudioSample* next = nullptr;
            const int result = reader->ReadAudioSample(track, next);
            RObject<CAudioSample> sample(next);
            if (result < 0)
                return -1;
            if (!sample)
                break;
            ++samples;
        }
    return samples;
}

#if VEK_BENCH_HAVE_AVFORMAT
int64_t OpenWithLibavformat(const std::string& file, bool findStreamInfo)
{
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, file.c_str(), nullptr, nullptr) < 0)
        return -1;
    const bool ok = !findStreamInfo || avformat_find_stream_info(context, nullptr) >= 0;
    const int64_t streams = ok ? int64_t(context->nb_streams) : -1;
    avformat_close_input(&context);
    return streams;
}
#endif

void AlternatingPasses(benchmark::State& state)
{
    VekBench::BenchMovieFile& file = BenchFile();
    if (!file.Error().empty())
        return state.SkipWithError(file.Error().c_str());
    if (!RegisterReaders())
        return state.SkipWithError("the MP4 reader could not be registered");
#if VEK_BENCH_HAVE_AVFORMAT
    enum { First, Full, Open, OpenAndInfo, Methods };
    av_log_set_level(AV_LOG_QUIET); // the zero payload makes the H.264 decoder complain at every picture
#else
    enum { First, Full, Methods, Open, OpenAndInfo };
#endif
    double best[4] = {1e30, 1e30, 1e30, 1e30};
    int64_t bytes[4] = {};
    int pass = 0;
    for (auto _ : state) {
        for (int step = 0; step < Methods; ++step) {
            const int method = (pass + step) % Methods;
            const int64_t readBefore = BytesReadByProcess();
            const auto start = std::chrono::steady_clock::now();
            int64_t got = 0;
            if (method == First || method == Full)
                got = OpenWithVek(file.Path(), method == Full);
#if VEK_BENCH_HAVE_AVFORMAT
            else
                got = OpenWithLibavformat(file.Path(), method == OpenAndInfo);
#endif
            best[method] = std::min(best[method], std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
            bytes[method] = BytesReadByProcess() - readBefore;
            if (got < 0 || (method == Full && got != file.Samples()))
                return state.SkipWithError("a method failed to read the file");
        }
        ++pass;
    }
    const double size = double(file.Size());
    state.counters["file_GB"] = size / 1e9;
    state.counters["vek_first_sample_ms"] = best[First] * 1e3;
    state.counters["vek_full_index_ms"] = best[Full] * 1e3;
    state.counters["vek_first_sample_read_kB"] = double(bytes[First]) / 1e3;
    state.counters["vek_full_index_read_MB"] = double(bytes[Full]) / 1e6;
    state.counters["vek_full_index_read_percent"] = double(bytes[Full]) * 100.0 / size;
#if VEK_BENCH_HAVE_AVFORMAT
    state.counters["lavf_open_ms"] = best[Open] * 1e3;
    state.counters["lavf_info_ms"] = best[OpenAndInfo] * 1e3;
    state.counters["lavf_open_read_MB"] = double(bytes[Open]) / 1e6;
    state.counters["lavf_info_read_MB"] = double(bytes[OpenAndInfo]) / 1e6;
    state.counters["first_sample_vs_lavf_open"] = best[Open] / best[First];
    state.counters["first_sample_vs_lavf_info"] = best[OpenAndInfo] / best[First];
    state.counters["full_index_vs_lavf_info"] = best[OpenAndInfo] / best[Full];
#endif
}
BENCHMARK(AlternatingPasses)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace
