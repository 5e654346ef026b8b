// Start-code scanning against memchr over the same 64 MB of real Annex B
// bytes.
//
// The bytes: an H.264 stream libx264 writes (through ffmpeg) from a noisy
// 1080p test pattern, repeated to 64 MB (VEK_BENCH_SCAN_MB). Each benchmark
// iteration runs one pass of each method, the order alternating from pass
// to pass, so both meet the same cache and CPU-frequency conditions:
//   scanner - StartCodeScanner::Feed + Next over the whole buffer, counting
//             every prefix (the library's path, vectorised where it can be);
//   memchr  - memchr for each 01 byte, then a look at the two bytes before
//             it: the obvious portable search, and the one to beat.
// Counters give each method's best pass in GB/s and scanner / memchr; the
// two must find the same number of prefixes.
#include <vek/elementary/StartCodeScanner.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

std::vector<uint8_t> MakeStream()
{
    const char* sizeText = std::getenv("VEK_BENCH_SCAN_MB");
    const size_t megabytes = sizeText ? size_t(std::max(1, std::atoi(sizeText))) : 64;
    char folder[] = "/tmp/vek-scan-bench-XXXXXX";
    if (!mkdtemp(folder))
        return {};
    const std::string path = std::string(folder) + "/stream.h264";
    const std::string command = "ffmpeg -hide_banner -loglevel error -y -f lavfi -i testsrc2=size=1920x1080:rate=25 "
                                "-vf noise=alls=12:allf=t -frames:v 40 -c:v libx264 -preset ultrafast -crf 14 '" +
                                path + "' </dev/null";
    std::vector<uint8_t> stream;
    if (std::system(command.c_str()) == 0) {
        if (FILE* f = std::fopen(path.c_str(), "rb")) {
            uint8_t buffer[1 << 16];
            size_t n = 0;
            while ((n = std::fread(buffer, 1, sizeof(buffer), f)) > 0)
                stream.insert(stream.end(), buffer, buffer + n);
            std::fclose(f);
        }
    }
    std::remove(path.c_str());
    std::remove(folder);
    if (stream.empty())
        return {};
    std::vector<uint8_t> bytes;
    bytes.reserve(megabytes << 20);
    while (bytes.size() < (megabytes << 20))
        bytes.insert(bytes.end(), stream.begin(), stream.begin() + long(std::min(stream.size(), (megabytes << 20) - bytes.size())));
    return bytes;
}

const std::vector<uint8_t>& Stream()
{
    static const std::vector<uint8_t> bytes = MakeStream();
    return bytes;
}

size_t ScanWithScanner(const std::vector<uint8_t>& bytes)
{
    StartCodeScanner scanner;
    scanner.Feed(bytes.data(), bytes.size());
    StartCodeScanner::Hit hit;
    size_t count = 0;
    while (scanner.Next(hit))
        ++count;
    return count;
}

size_t ScanWithMemchr(const std::vector<uint8_t>& bytes)
{
    const uint8_t* p = bytes.data() + 2;
    const uint8_t* end = bytes.data() + bytes.size();
    size_t count = 0;
    while (p < end) {
        const auto* one = static_cast<const uint8_t*>(std::memchr(p, 1, size_t(end - p)));
        if (!one)
            break;
        if (one[-1] == 0 && one[-2] == 0)
            ++count;
        p = one + 1;
    }
    return count;
}

template <typename Scan>
double TimedPass(Scan scan, const std::vector<uint8_t>& bytes, size_t& found)
{
    const auto start = std::chrono::steady_clock::now();
    found = scan(bytes);
    benchmark::DoNotOptimize(found);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return double(bytes.size()) / seconds.count() / 1e9;
}

void ScanStartCodes(benchmark::State& state)
{
    const std::vector<uint8_t>& bytes = Stream();
    if (bytes.empty()) {
        state.SkipWithError("ffmpeg with libx264 is needed to make the stream");
        return;
    }
    double bestScanner = 0;
    double bestMemchr = 0;
    size_t scannerHits = 0;
    size_t memchrHits = 0;
    bool scannerFirst = true;
    for (auto _ : state) {
        if (scannerFirst) {
            bestScanner = std::max(bestScanner, TimedPass(ScanWithScanner, bytes, scannerHits));
            bestMemchr = std::max(bestMemchr, TimedPass(ScanWithMemchr, bytes, memchrHits));
        } else {
            bestMemchr = std::max(bestMemchr, TimedPass(ScanWithMemchr, bytes, memchrHits));
            bestScanner = std::max(bestScanner, TimedPass(ScanWithScanner, bytes, scannerHits));
        }
        scannerFirst = !scannerFirst;
        if (scannerHits != memchrHits) {
            state.SkipWithError("the methods found different prefix counts");
            return;
        }
    }
    state.counters["scanner_GBps"] = bestScanner;
    state.counters["memchr_GBps"] = bestMemchr;
    state.counters["scanner_over_memchr"] = bestMemchr > 0 ? bestScanner / bestMemchr : 0;
    state.counters["prefixes"] = double(scannerHits);
    state.SetBytesProcessed(int64_t(state.iterations()) * 2 * int64_t(bytes.size()));
}

} // namespace

BENCHMARK(ScanStartCodes)->Iterations(20)->Unit(benchmark::kMillisecond);
