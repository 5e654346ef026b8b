// Sequential file reads through the library's streams side by side with a
// plain read() loop at the same chunk sizes, and memory-stream writes
// against memcpy. One second of 48 kHz stereo 24-bit sound is 288,000
// bytes; 4 KiB is the small-read case.
//
// The file: VEK_BENCH_FILE names an existing one; otherwise a file of
// VEK_BENCH_FILE_MB megabytes (default 1024) is written to the temporary
// folder once and removed at exit. Reads run from the page cache after the
// first pass.
#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/CMemoryStream.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#if !VEK_PLATFORM_WINDOWS
#include <fcntl.h>
#include <unistd.h>
#endif

using namespace Quorvex::Vek;

namespace {

constexpr int32_t kAudioSecond = 48000 * 2 * 3;
constexpr int32_t kBlockSize = 65536;
constexpr int32_t kBlockCount = 16;

class BenchFile {
public:
    static const BenchFile& Get()
    {
        static BenchFile file;
        return file;
    }
    const std::string& Path() const { return m_path; }
    int64_t Size() const { return m_size; }

private:
    BenchFile()
    {
        if (const char* given = std::getenv("VEK_BENCH_FILE")) {
            m_path = given;
            m_size = int64_t(std::filesystem::file_size(m_path));
            return;
        }
        const char* megabytes = std::getenv("VEK_BENCH_FILE_MB");
        const int64_t mb = megabytes ? std::atoll(megabytes) : 1024;
        m_path = (std::filesystem::temp_directory_path() / "vek-stream-bench.bin").string();
        m_owned = true;
        std::vector<unsigned char> chunk(1 << 20);
        for (size_t i = 0; i < chunk.size(); ++i)
            chunk[i] = uint8_t(i * 2654435761u >> 24);
        std::FILE* out = std::fopen(m_path.c_str(), "wb");
        for (int64_t i = 0; out && i < mb; ++i)
            std::fwrite(chunk.data(), 1, chunk.size(), out);
        if (out)
            std::fclose(out);
        m_size = mb << 20;
    }
    ~BenchFile()
    {
        if (m_owned)
            std::remove(m_path.c_str());
    }

    std::string m_path;
    int64_t m_size = 0;
    bool m_owned = false;
};

RObject<CFileDescriptorStream> OpenForReading()
{
    RObject<CFileDescriptorStream> stream(new CFileDescriptorStream(FileStream::FileMode::Read));
    if (stream->Open(BenchFile::Get().Path().c_str()) < 0)
        stream.SafeRelease();
    return stream;
}

void ReadAll(benchmark::State& state, CStream* stream)
{
    const int32_t chunk = int32_t(state.range(0));
    std::vector<unsigned char> buffer(static_cast<size_t>(chunk));
    int64_t total = 0;
    for (auto _ : state) {
        stream->Seek(0, CStream::Begin, nullptr);
        int got;
        while ((got = stream->Read(buffer.data(), chunk)) > 0)
            total += got;
        benchmark::DoNotOptimize(buffer.data());
    }
    state.SetBytesProcessed(total);
}

void PlainRead(benchmark::State& state)
{
    const int32_t chunk = int32_t(state.range(0));
    std::vector<unsigned char> buffer(static_cast<size_t>(chunk));
    int64_t total = 0;
#if !VEK_PLATFORM_WINDOWS
    const int descriptor = ::open(BenchFile::Get().Path().c_str(), O_RDONLY);
    for (auto _ : state) {
        ::lseek(descriptor, 0, SEEK_SET);
        ssize_t got;
        while ((got = ::read(descriptor, buffer.data(), size_t(chunk))) > 0)
            total += got;
        benchmark::DoNotOptimize(buffer.data());
    }
    ::close(descriptor);
#else
    std::FILE* in = std::fopen(BenchFile::Get().Path().c_str(), "rb");
    std::setvbuf(in, nullptr, _IONBF, 0);
    for (auto _ : state) {
        std::fseek(in, 0, SEEK_SET);
        size_t got;
        while ((got = std::fread(buffer.data(), 1, size_t(chunk), in)) > 0)
            total += int64_t(got);
        benchmark::DoNotOptimize(buffer.data());
    }
    std::fclose(in);
#endif
    state.SetBytesProcessed(total);
}

void FileDescriptorStreamRead(benchmark::State& state)
{
    RObject<CFileDescriptorStream> stream(OpenForReading());
    if (!stream)
        return state.SkipWithError("cannot open the bench file");
    ReadAll(state, stream);
}

void BufferedStreamRead(benchmark::State& state)
{
    RObject<CFileDescriptorStream> file(OpenForReading());
    if (!file)
        return state.SkipWithError("cannot open the bench file");
    RObject<CBufferedStream> stream(new CBufferedStream(file, kBlockSize, kBlockCount));
    ReadAll(state, stream);
}

constexpr int64_t kWriteTotal = 64 << 20;

void MemoryStreamWrite(benchmark::State& state)
{
    const int32_t chunk = int32_t(state.range(0));
    std::vector<unsigned char> source(static_cast<size_t>(chunk), 0x5A);
    RObject<CMemoryStream> stream(new CMemoryStream());
    for (auto _ : state) {
        stream->Seek(0, CStream::Begin, nullptr);
        for (int64_t done = 0; done < kWriteTotal; done += chunk)
            stream->Write(source.data(), chunk);
        benchmark::DoNotOptimize(stream->GetData());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * (kWriteTotal / chunk) * chunk);
}

void Memcpy(benchmark::State& state)
{
    const int32_t chunk = int32_t(state.range(0));
    std::vector<unsigned char> source(static_cast<size_t>(chunk), 0x5A);
    std::vector<unsigned char> target(static_cast<size_t>(kWriteTotal + chunk));
    for (auto _ : state) {
        unsigned char* at = target.data();
        for (int64_t done = 0; done < kWriteTotal; done += chunk, at += chunk)
            std::memcpy(at, source.data(), size_t(chunk));
        benchmark::DoNotOptimize(target.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * (kWriteTotal / chunk) * chunk);
}

} // namespace

BENCHMARK(PlainRead)->Arg(kAudioSecond)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(FileDescriptorStreamRead)->Arg(kAudioSecond)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(BufferedStreamRead)->Arg(kAudioSecond)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(MemoryStreamWrite)->Arg(kAudioSecond)->Arg(4096)->Arg(64)->Unit(benchmark::kMillisecond);
BENCHMARK(Memcpy)->Arg(kAudioSecond)->Arg(4096)->Arg(64)->Unit(benchmark::kMillisecond);
