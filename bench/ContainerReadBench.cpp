// The audio container readers against libsndfile and a plain read() loop.
//
// Open: CContainerReader::Create on a path (a directory context, every
// registered reader probing the file) plus BeginIndex, on one second of
// 48 kHz stereo 16-bit WAV, against sf_open + sf_close of the same file.
//
// Read: every sample's bytes of a 1 GiB WAV, Wave64 and AIFF file
// (ReadAudioSample + ReadAudioData, one second per sample) against
// libsndfile's sf_read_raw of one second per call and a plain read() loop of
// one-second chunks into one reused buffer. Each benchmark iteration runs
// one pass of every method, the order rotating from pass to pass, so that
// all methods meet the same page-cache and CPU-frequency conditions; the
// counters give each method's best pass in GB/s and the ratios.
//
// The files are written with libsndfile (an independent writer) into a
// fresh temporary folder, read back once before any timing so the passes
// run from the page cache, and removed at exit. VEK_BENCH_READ_MB sets the
// size of the large files (default 1024).
#include <vek/containers/CContainerReader.h>
#include <vek/containers/ContainerReaderInventory.h>
#include <vek/core/CString.h>
#include <vek/core/RObject.h>

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include "Threaded.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

using namespace Quorvex::Vek;

namespace {

constexpr int kRate = 48000;
constexpr int kChannels = 2;
constexpr int kSecondBytes = kRate * kChannels * 2; // 16-bit

class BenchFiles {
public:
    static BenchFiles& Get()
    {
        static BenchFiles files;
        return files;
    }
    const std::string& Path(const std::string& name) const { return m_paths.at(name); }
    int64_t DataBytes() const { return m_dataBytes; }
    const std::string& Error() const { return m_error; }

private:
    BenchFiles()
    {
        ContainerReaderInventory::AddWavContainerReader("ContainerReadBench");
        ContainerReaderInventory::AddWav64ContainerReader("ContainerReadBench");
        ContainerReaderInventory::AddAiffContainerReader("ContainerReadBench");
        char pattern[] = "/tmp/vek-read-bench-XXXXXX";
        const char* made = ::mkdtemp(pattern);
        if (!made) {
            m_error = "cannot make a temporary folder";
            return;
        }
        m_folder = made;
        const char* megabytes = std::getenv("VEK_BENCH_READ_MB");
        const int64_t mb = megabytes ? std::atoll(megabytes) : 1024;
        m_dataBytes = (mb << 20) / 4 * 4;
        Write("second", SF_FORMAT_WAV | SF_FORMAT_PCM_16, kSecondBytes);
        Write("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, m_dataBytes);
        Write("w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16, m_dataBytes);
        Write("aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, m_dataBytes);
    }
    ~BenchFiles()
    {
        if (!m_folder.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(m_folder, ignored);
        }
    }

    void Write(const std::string& name, int format, int64_t bytes)
    {
        const std::string path = m_folder + "/" + name + (name == "aiff" ? ".aiff" : "." + name);
        if (name == "second")
            m_paths[name] = m_folder + "/second.wav";
        else
            m_paths[name] = path;
        SF_INFO info{};
        info.samplerate = kRate;
        info.channels = kChannels;
        info.format = format;
        SNDFILE* file = sf_open(m_paths[name].c_str(), SFM_WRITE, &info);
        if (!file) {
            m_error = "libsndfile cannot write " + m_paths[name];
            return;
        }
        std::vector<unsigned char> chunk(1 << 20);
        for (size_t i = 0; i < chunk.size(); ++i)
            chunk[i] = uint8_t(i * 2654435761u >> 24);
        for (int64_t done = 0; done < bytes;) {
            const sf_count_t piece = sf_count_t(std::min<int64_t>(int64_t(chunk.size()), bytes - done));
            if (sf_write_raw(file, chunk.data(), piece) != piece) {
                m_error = "libsndfile cannot write " + m_paths[name];
                break;
            }
            done += piece;
        }
        sf_close(file);
        // Read back once, so that every timed pass reads from the page cache.
        const int descriptor = ::open(m_paths[name].c_str(), O_RDONLY);
        while (descriptor >= 0 && ::read(descriptor, chunk.data(), chunk.size()) > 0) {
        }
        if (descriptor >= 0)
            ::close(descriptor);
    }

    std::string m_folder;
    std::map<std::string, std::string> m_paths;
    int64_t m_dataBytes = 0;
    std::string m_error;
};

// ---------------------------------------------------------------- open

void VekOpen(benchmark::State& state)
{
    BenchFiles& files = BenchFiles::Get();
    if (!files.Error().empty())
        return state.SkipWithError(files.Error().c_str());
    RObject<CString> path(CString::Create(files.Path("second").c_str()));
    for (auto _ : state) {
        RObject<CContainerReader> reader(CContainerReader::Create(path));
        if (!reader || reader->BeginIndex() < 0)
            return state.SkipWithError("the library cannot open the file");
        benchmark::DoNotOptimize(reader->GetAudioProperties(0));
    }
}

void SndfileOpen(benchmark::State& state)
{
    BenchFiles& files = BenchFiles::Get();
    if (!files.Error().empty())
        return state.SkipWithError(files.Error().c_str());
    const std::string& path = files.Path("second");
    for (auto _ : state) {
        SF_INFO info{};
        SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
        if (!file)
            return state.SkipWithError("libsndfile cannot open the file");
        benchmark::DoNotOptimize(info.frames);
        sf_close(file);
    }
}

// ---------------------------------------------------------------- read

// One pass of a method: the bytes it read, or -1 on failure.
int64_t VekPass(const std::string& path)
{
    RObject<CString> name(CString::Create(path.c_str()));
    RObject<CContainerReader> reader(CContainerReader::Create(name));
    if (!reader || reader->BeginIndex() < 0)
        return -1;
    int64_t total = 0;
    for (;;) {
        CAudioSample* next = nullptr;
        if (reader->ReadAudioSample(0, next) < 0)
            return -1;
        RObject<CAudioSample> sample(next);
        if (!sample)
            break;
        if (reader->ReadAudioData(0, sample) < 0)
            return -1;
        auto* data = static_cast<CMemoryDataReference*>(sample->GetDataReference());
        CByteArray* bytes = data->GetBuffer();
        benchmark::DoNotOptimize(bytes->GetData());
        total += bytes->GetLength();
    }
    return total;
}

int64_t SndfilePass(const std::string& path, std::vector<unsigned char>& buffer)
{
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file)
        return -1;
    int64_t total = 0;
    sf_count_t got;
    while ((got = sf_read_raw(file, buffer.data(), sf_count_t(buffer.size()))) > 0) {
        benchmark::DoNotOptimize(buffer.data());
        total += got;
    }
    sf_close(file);
    return total;
}

int64_t PlainPass(const std::string& path, std::vector<unsigned char>& buffer)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY);
    if (descriptor < 0)
        return -1;
    int64_t total = 0;
    ssize_t got;
    while ((got = ::read(descriptor, buffer.data(), buffer.size())) > 0) {
        benchmark::DoNotOptimize(buffer.data());
        total += got;
    }
    ::close(descriptor);
    return total;
}

double ThreadSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

void ReadFile(benchmark::State& state, const char* name)
{
    BenchFiles& files = BenchFiles::Get();
    if (!files.Error().empty())
        return state.SkipWithError(files.Error().c_str());
    const std::string& path = files.Path(name);
    const int64_t fileBytes = int64_t(std::filesystem::file_size(path));
    std::vector<unsigned char> buffer(kSecondBytes);
    enum { Vek, Sndfile, Plain, Methods };
    // Best wall time and best CPU time of this thread per method: on a busy
    // machine the CPU time shows the work, the wall time the waiting too.
    double best[Methods] = {1e30, 1e30, 1e30};
    double bestCpu[Methods] = {1e30, 1e30, 1e30};
    int pass = 0;
    for (auto _ : state) {
        for (int step = 0; step < Methods; ++step) {
            const int method = (pass + step) % Methods;
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = ThreadSeconds();
            const int64_t got = method == Vek       ? VekPass(path)
                                : method == Sndfile ? SndfilePass(path, buffer)
                                                    : PlainPass(path, buffer);
            const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            const double cpu = ThreadSeconds() - cpuStart;
            // The library and libsndfile read the sound data; the plain
            // loop reads the whole file, its header included.
            const int64_t expected = method == Plain ? fileBytes : files.DataBytes();
            if (got != expected) {
                char text[160];
                std::snprintf(text, sizeof text, "method %d read %lld bytes, not %lld", method,
                              static_cast<long long>(got), static_cast<long long>(expected));
                return state.SkipWithError(text);
            }
            best[method] = std::min(best[method], seconds);
            bestCpu[method] = std::min(bestCpu[method], cpu);
        }
        ++pass;
    }
    const double gigabytes = double(files.DataBytes()) / 1e9;
    state.counters["vek_GBps"] = gigabytes / best[Vek];
    state.counters["sndfile_GBps"] = gigabytes / best[Sndfile];
    state.counters["read_GBps"] = double(fileBytes) / 1e9 / best[Plain];
    // Time for time per byte: above 1 the library is faster.
    state.counters["vek_vs_read"] = (best[Plain] / double(fileBytes)) / (best[Vek] / double(files.DataBytes()));
    state.counters["vek_vs_sndfile"] = best[Sndfile] / best[Vek];
    state.counters["cpu_vek_GBps"] = gigabytes / bestCpu[Vek];
    state.counters["cpu_sndfile_GBps"] = gigabytes / bestCpu[Sndfile];
    state.counters["cpu_read_GBps"] = double(fileBytes) / 1e9 / bestCpu[Plain];
    state.counters["cpu_vek_vs_read"] =
        (bestCpu[Plain] / double(fileBytes)) / (bestCpu[Vek] / double(files.DataBytes()));
    state.counters["cpu_vek_vs_sndfile"] = bestCpu[Sndfile] / bestCpu[Vek];
    state.SetBytesProcessed(int64_t(state.iterations()) * files.DataBytes() * Methods);
}

} // namespace

BENCHMARK(VekOpen)->Unit(benchmark::kMicrosecond);
BENCHMARK(SndfileOpen)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ReadFile, wav, "wav")->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadFile, w64, "w64")->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadFile, aiff, "aiff")->Iterations(5)->Unit(benchmark::kMillisecond);
