// Indexing a large raw H.264 stream: the library's reader through CIndexer
// (every access unit found, typed, timed and put in order) against
// libavformat's raw H.264 demuxer and parser (avformat_open_input and an
// av_read_frame loop), in one process, passes alternating, page cache warm.
//
// The stream (about 1 GB) is a short libx264 encode repeated; it is made
// once with ffmpeg and kept in the build folder (VEK_AVC_BENCH_FILE names
// another file; VEK_AVC_BENCH_MB another size). Without ffmpeg the bench
// is skipped.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <vek/Vek.h>

#if VEK_BENCH_HAVE_AVFORMAT
extern "C" {
#include <libavformat/avformat.h>
}
#endif

using namespace Quorvex::Vek;

namespace {

int64_t FileSize(const std::string& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    return file ? int64_t(file.tellg()) : -1;
}

// The bench stream, made on first use: "" when it cannot be made.
const std::string& StreamPath()
{
    static const std::string path = [] {
        const char* named = std::getenv("VEK_AVC_BENCH_FILE");
        const std::string target = named ? named : "avc_index_bench.h264";
        const char* megabytes = std::getenv("VEK_AVC_BENCH_MB");
        const int64_t wanted = int64_t(megabytes ? std::atoi(megabytes) : 1024) << 20;
        if (FileSize(target) >= wanted)
            return target;
        const std::string piece = target + ".piece";
        const std::string encode = "ffmpeg -v error -nostdin -y -f lavfi -i testsrc2=size=1280x720:rate=25 -frames:v 250 "
                                   "-c:v libx264 -preset ultrafast -bf 3 -x264-params keyint=50 -b:v 8M -f h264 '" + piece + "'";
        if (std::system(encode.c_str()) != 0)
            return std::string();
        std::ifstream in(piece, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        std::ofstream out(target, std::ios::binary | std::ios::trunc);
        for (int64_t written = 0; written < wanted && !bytes.empty(); written += int64_t(bytes.size()))
            out.write(bytes.data(), std::streamsize(bytes.size()));
        std::remove(piece.c_str());
        return out ? target : std::string();
    }();
    return path;
}

// Pictures indexed by the library's reader, or -1.
int64_t IndexWithVek(const std::string& file)
{
    static const bool registered = ContainerReaderInventory::AddMpeg4AvcContainerReader("bench") >= 0;
    RObject<CString> path(CString::Create(file.c_str()));
    RObject<CContainerReader> reader(registered && path ? CContainerReader::Create(path) : nullptr);
    RObject<CIndexer> indexer(reader ? CIndexer::Create(reader) : nullptr);
    if (!indexer || indexer->Begin(false) < 0 || indexer->RunIndexPass() < 0)
        return -1;
    CVideoIndexer* video = indexer->GetVideoIndexer(0);
    const int64_t count = video ? video->GetSampleCount() : -1;
    indexer->End();
    return count;
}

#if VEK_BENCH_HAVE_AVFORMAT
// Packets libavformat's raw H.264 demuxer gives, or -1.
int64_t IndexWithLibavformat(const std::string& file)
{
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, file.c_str(), av_find_input_format("h264"), nullptr) < 0)
        return -1;
    AVPacket* packet = av_packet_alloc();
    int64_t count = 0;
    while (packet && av_read_frame(context, packet) >= 0) {
        ++count;
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&context);
    return count;
}
#endif

double Seconds(int64_t (*index)(const std::string&), const std::string& file, int64_t& pictures)
{
    const auto start = std::chrono::steady_clock::now();
    pictures = index(file);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The library alone, timed by the framework.
void VekIndex(benchmark::State& state)
{
    const std::string& file = StreamPath();
    if (file.empty()) {
        state.SkipWithError("ffmpeg with libx264 could not make the stream");
        return;
    }
    int64_t pictures = 0;
    for (auto _ : state)
        if ((pictures = IndexWithVek(file)) <= 0)
            state.SkipWithError("indexing failed");
    state.counters["pictures"] = double(pictures);
    state.SetBytesProcessed(state.iterations() * FileSize(file));
}
BENCHMARK(VekIndex)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

#if VEK_BENCH_HAVE_AVFORMAT
// Both rivals in each iteration, one after the other over the same warm
// file; the counters give each one's seconds and libavformat's time over
// the library's (the speed-up).
void AlternatingPasses(benchmark::State& state)
{
    const std::string& file = StreamPath();
    if (file.empty()) {
        state.SkipWithError("ffmpeg with libx264 could not make the stream");
        return;
    }
    double vek = 0;
    double rival = 0;
    int64_t ours = 0;
    int64_t theirs = 0;
    for (auto _ : state) {
        vek += Seconds(IndexWithVek, file, ours);
        rival += Seconds(IndexWithLibavformat, file, theirs);
    }
    if (ours <= 0 || ours != theirs)
        state.SkipWithError(("access units differ: " + std::to_string(ours) + " against " + std::to_string(theirs)).c_str());
    state.counters["vek_s"] = vek / double(state.iterations());
    state.counters["libavformat_s"] = rival / double(state.iterations());
    state.counters["speedup"] = vek > 0 ? rival / vek : 0;
    state.counters["access_units"] = double(ours);
}
BENCHMARK(AlternatingPasses)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
#endif

} // namespace
