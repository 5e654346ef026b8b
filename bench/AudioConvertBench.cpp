// The PCM layout converter against libsndfile's converting reads and
// libswresample's sample-format conversion, on the same input in one
// process.
//
// Each pass converts one second of 48 kHz stereo 30 times, so that input
// and output stay in the processor's caches and the pass measures the
// conversion, not the memory bus: the library through CAudioFormatConverter
// (WriteSample/ReadSample of a one-second sample held in memory, the output
// released as a host would); libsndfile through sf_readf_int /
// sf_readf_float / sf_readf_short of the same second in a WAV or AIFF file
// held in memory (sf_open_virtual), seeking back to its start before each
// read into one reused buffer; libswresample through swr_convert of the
// second at an unchanged rate. libswresample has no packed 24-bit
// or byte-swapped formats, so it meets the library on 16-bit to float,
// float to 16-bit and 32- to 16-bit only; libsndfile reads 16-bit
// big-endian AIFF into native 16-bit for the byte-swap pair.
//
// Each benchmark iteration runs one pass of every method, the order
// rotating from pass to pass; the counters give each method's best pass in
// million samples per second and the library's speed over each rival's
// (above 1: the library is faster), by wall time and by the thread's CPU
// time.
#include <vek/filters/audio/CAudioFormatConverter.h>
#include <vek/media/AudioFormat.h>
#include <vek/samples/CLinearDataReference.h>

#include <benchmark/benchmark.h>
#include <sndfile.h>
#if VEK_BENCH_SWRESAMPLE
extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
#include <libswresample/swresample.h>
}
#endif

#include "Threaded.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include <time.h>

using namespace Quorvex::Vek;

namespace {

constexpr int kRate = 48000;
constexpr int kChannels = 2;
constexpr int kSeconds = 30; // converted per pass, each the same one
constexpr int64_t kFrames = int64_t(kRate) * kSeconds;

// ---------------------------------------------------------------- input

// Full-scale noise in the input layout, the same every run.
std::vector<uint8_t> MakeData(uint32_t format)
{
    PcmLayout layout;
    PcmLayout::FromFormat(format, layout);
    std::vector<uint8_t> data(size_t(kRate) * kChannels * size_t(layout.bytes));
    uint32_t state = 12345;
    for (size_t i = 0; i < data.size(); i += size_t(layout.bytes)) {
        state = state * 1664525u + 1013904223u;
        if (layout.coding == PcmLayout::Coding::Float) {
            const float value = float(int32_t(state)) * (1.0f / 2147483648.0f);
            std::memcpy(data.data() + i, &value, 4);
        } else {
            for (int b = 0; b < layout.bytes; ++b)
                data[i + size_t(b)] = uint8_t(state >> (8 * b + 3));
        }
    }
    return data;
}

// ---------------------------------------------------------------- library

class VekMethod {
public:
    VekMethod(uint32_t from, uint32_t to, const std::vector<uint8_t>& data) : m_from(from), m_to(to)
    {
        PcmLayout layout;
        PcmLayout::FromFormat(from, layout);
        const int32_t secondBytes = kRate * kChannels * layout.bytes;
        RObject<CLinearDataReference> bytes(CLinearDataReference::Create(secondBytes));
        std::memcpy(bytes->GetData(), data.data(), size_t(secondBytes));
        for (int64_t second = 0; second < kSeconds; ++second) {
            RObject<CAudioSample> sample(new CAudioSample(kRate, 1));
            sample->SetDataReference(bytes);
            sample->SetTime(second * kRate);
            m_samples.push_back(sample);
        }
        RObject<CAudioProperties> properties(new CAudioProperties());
        properties->SetFormat(from);
        properties->SetChannels(kChannels);
        properties->SetSampleRate(kRate);
        m_converter = RObject<CAudioFormatConverter>(new CAudioFormatConverter());
        m_ready = m_converter->SetInputProperties(properties) >= 0 && m_converter->SetOutputFormat(to) >= 0 &&
                  m_converter->Begin() >= 0;
    }

    // Samples converted, or -1.
    int64_t Pass()
    {
        if (!m_ready)
            return -1;
        int64_t samples = 0;
        for (const RObject<CAudioSample>& sample : m_samples) {
            CAudioSample* raw = nullptr;
            if (m_converter->WriteSample(sample) < 0 || m_converter->ReadSample(raw) != 0)
                return -1;
            RObject<CAudioSample> output(raw);
            benchmark::DoNotOptimize(static_cast<CLinearDataReference*>(output->GetDataReference())->GetData());
            samples += output->GetDuration() * kChannels;
        }
        return samples;
    }

private:
    uint32_t m_from;
    uint32_t m_to;
    std::vector<RObject<CAudioSample>> m_samples;
    RObject<CAudioFormatConverter> m_converter;
    bool m_ready = false;
};

// ---------------------------------------------------------------- libsndfile

struct MemoryFile {
    std::vector<uint8_t> bytes;
    sf_count_t position = 0;
};

sf_count_t VirtualLength(void* user)
{
    return sf_count_t(static_cast<MemoryFile*>(user)->bytes.size());
}

sf_count_t VirtualSeek(sf_count_t offset, int whence, void* user)
{
    auto* file = static_cast<MemoryFile*>(user);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file->position : VirtualLength(user);
    file->position = std::clamp<sf_count_t>(base + offset, 0, VirtualLength(user));
    return file->position;
}

sf_count_t VirtualRead(void* to, sf_count_t count, void* user)
{
    auto* file = static_cast<MemoryFile*>(user);
    const sf_count_t got = std::min(count, VirtualLength(user) - file->position);
    std::memcpy(to, file->bytes.data() + file->position, size_t(got));
    file->position += got;
    return got;
}

sf_count_t VirtualWrite(const void* from, sf_count_t count, void* user)
{
    auto* file = static_cast<MemoryFile*>(user);
    const size_t end = size_t(file->position + count);
    if (file->bytes.size() < end)
        file->bytes.resize(end);
    std::memcpy(file->bytes.data() + file->position, from, size_t(count));
    file->position += count;
    return count;
}

sf_count_t VirtualTell(void* user)
{
    return static_cast<MemoryFile*>(user)->position;
}

SF_VIRTUAL_IO kVirtual = {VirtualLength, VirtualSeek, VirtualRead, VirtualWrite, VirtualTell};

enum class Read { Int, Float, Short };

class SndfileMethod {
public:
    // A file of `sfFormat` written by libsndfile from the raw input.
    SndfileMethod(int sfFormat, Read read, const std::vector<uint8_t>& data) : m_read(read)
    {
        SF_INFO info{};
        info.samplerate = kRate;
        info.channels = kChannels;
        info.format = sfFormat;
        SNDFILE* file = sf_open_virtual(&kVirtual, SFM_WRITE, &info, &m_file);
        if (!file)
            return;
        // The raw bytes are little-endian; AIFF stores big-endian.
        std::vector<uint8_t> raw = data;
        if ((sfFormat & SF_FORMAT_TYPEMASK) == SF_FORMAT_AIFF)
            for (size_t i = 0; i + 1 < raw.size(); i += 2)
                std::swap(raw[i], raw[i + 1]);
        m_ready = sf_write_raw(file, raw.data(), sf_count_t(raw.size())) == sf_count_t(raw.size());
        sf_close(file);
        m_buffer.resize(size_t(kRate) * kChannels * 4);
    }

    int64_t Pass()
    {
        if (!m_ready)
            return -1;
        m_file.position = 0;
        SF_INFO info{};
        SNDFILE* file = sf_open_virtual(&kVirtual, SFM_READ, &info, &m_file);
        if (!file)
            return -1;
        int64_t samples = 0;
        for (int second = 0; second < kSeconds; ++second) {
            if (sf_seek(file, 0, SEEK_SET) != 0)
                break;
            const sf_count_t got = ReadSecond(file);
            benchmark::DoNotOptimize(m_buffer.data());
            samples += got * kChannels;
        }
        sf_close(file);
        return samples;
    }

private:
    sf_count_t ReadSecond(SNDFILE* file)
    {
        switch (m_read) {
        case Read::Int: return sf_readf_int(file, reinterpret_cast<int*>(m_buffer.data()), kRate);
        case Read::Float: return sf_readf_float(file, reinterpret_cast<float*>(m_buffer.data()), kRate);
        default: return sf_readf_short(file, reinterpret_cast<short*>(m_buffer.data()), kRate);
        }
    }

    Read m_read;
    MemoryFile m_file;
    std::vector<uint8_t> m_buffer;
    bool m_ready = false;
};

// ---------------------------------------------------------------- libswresample

#if VEK_BENCH_SWRESAMPLE
class SwresampleMethod {
public:
    SwresampleMethod(AVSampleFormat from, AVSampleFormat to, const std::vector<uint8_t>& data) : m_data(data)
    {
        AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
        if (swr_alloc_set_opts2(&m_context, &stereo, to, kRate, &stereo, from, kRate, 0, nullptr) < 0 ||
            swr_init(m_context) < 0)
            return;
        m_buffer.resize(size_t(kRate) * kChannels * size_t(av_get_bytes_per_sample(to)));
        m_ready = true;
    }
    ~SwresampleMethod() { swr_free(&m_context); }

    int64_t Pass()
    {
        if (!m_ready)
            return -1;
        int64_t samples = 0;
        for (int second = 0; second < kSeconds; ++second) {
            const uint8_t* in = m_data.data();
            uint8_t* out = m_buffer.data();
            const int got = swr_convert(m_context, &out, kRate, &in, kRate);
            if (got < 0)
                return -1;
            benchmark::DoNotOptimize(m_buffer.data());
            samples += int64_t(got) * kChannels;
        }
        return samples;
    }

private:
    const std::vector<uint8_t>& m_data;
    SwrContext* m_context = nullptr;
    std::vector<uint8_t> m_buffer;
    bool m_ready = false;
};
#endif

// ---------------------------------------------------------------- passes

double ThreadSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

struct Pair {
    uint32_t from;
    uint32_t to;
    int sndfileFormat; // 0: no libsndfile rival
    Read sndfileRead;
    int swrFrom; // AVSampleFormat, -1: no libswresample rival
    int swrTo;
};

void Convert(benchmark::State& state, Pair pair)
{
    const std::vector<uint8_t> data = MakeData(pair.from);
    VekMethod vek(pair.from, pair.to, data);
    SndfileMethod sndfile(pair.sndfileFormat, pair.sndfileRead, data);
#if VEK_BENCH_SWRESAMPLE
    const bool hasSwr = pair.swrFrom >= 0;
    SwresampleMethod swr(AVSampleFormat(std::max(pair.swrFrom, 0)), AVSampleFormat(std::max(pair.swrTo, 0)), data);
#else
    const bool hasSwr = false;
#endif
    enum { Vek, Sndfile, Swr, Methods };
    const bool used[Methods] = {true, pair.sndfileFormat != 0, hasSwr};
    // Best wall time and best CPU time of this thread per method: on a busy
    // machine the CPU time shows the work, the wall time the waiting too.
    double best[Methods] = {1e30, 1e30, 1e30};
    double bestCpu[Methods] = {1e30, 1e30, 1e30};
    int pass = 0;
    for (auto _ : state) {
        for (int step = 0; step < Methods; ++step) {
            const int method = (pass + step) % Methods;
            if (!used[method])
                continue;
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = ThreadSeconds();
            int64_t got = -1;
            if (method == Vek)
                got = vek.Pass();
            else if (method == Sndfile)
                got = sndfile.Pass();
#if VEK_BENCH_SWRESAMPLE
            else
                got = swr.Pass();
#endif
            const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            const double cpu = ThreadSeconds() - cpuStart;
            if (got != kFrames * kChannels) {
                const std::string text = "method " + std::to_string(method) + " converted " + std::to_string(got) +
                                         " samples, not " + std::to_string(kFrames * kChannels);
                return state.SkipWithError(text.c_str());
            }
            best[method] = std::min(best[method], seconds);
            bestCpu[method] = std::min(bestCpu[method], cpu);
        }
        ++pass;
    }
    const double samples = double(kFrames * kChannels) / 1e6;
    state.counters["vek_Msps"] = samples / best[Vek];
    if (used[Sndfile]) {
        state.counters["sndfile_Msps"] = samples / best[Sndfile];
        state.counters["vek_vs_sndfile"] = best[Sndfile] / best[Vek];
        state.counters["cpu_vek_vs_sndfile"] = bestCpu[Sndfile] / bestCpu[Vek];
    }
    if (used[Swr]) {
        state.counters["swr_Msps"] = samples / best[Swr];
        state.counters["vek_vs_swr"] = best[Swr] / best[Vek];
        state.counters["cpu_vek_vs_swr"] = bestCpu[Swr] / bestCpu[Vek];
    }
}

#if VEK_BENCH_SWRESAMPLE
constexpr int S16 = AV_SAMPLE_FMT_S16;
constexpr int S32 = AV_SAMPLE_FMT_S32;
constexpr int Flt = AV_SAMPLE_FMT_FLT;
#else
constexpr int S16 = -1, S32 = -1, Flt = -1;
#endif
constexpr int None = -1;

const Pair S16ToFloat = {
    AudioFormat::Int16L, AudioFormat::Float32L, SF_FORMAT_WAV | SF_FORMAT_PCM_16, Read::Float, S16, Flt};
const Pair S24ToS32 = {
    AudioFormat::Int24L, AudioFormat::Int32L, SF_FORMAT_WAV | SF_FORMAT_PCM_24, Read::Int, None, None};
const Pair S24ToFloat = {
    AudioFormat::Int24L, AudioFormat::Float32L, SF_FORMAT_WAV | SF_FORMAT_PCM_24, Read::Float, None, None};
const Pair FloatToS16 = {
    AudioFormat::Float32L, AudioFormat::Int16L, SF_FORMAT_WAV | SF_FORMAT_FLOAT, Read::Short, Flt, S16};
const Pair S16BigToLittle = {
    AudioFormat::Int16B, AudioFormat::Int16L, SF_FORMAT_AIFF | SF_FORMAT_PCM_16, Read::Short, None, None};
const Pair S32ToS16 = {
    AudioFormat::Int32L, AudioFormat::Int16L, SF_FORMAT_WAV | SF_FORMAT_PCM_32, Read::Short, S32, S16};

} // namespace

BENCHMARK_CAPTURE(Convert, s16_to_f32, S16ToFloat)->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, s24_to_s32, S24ToS32)->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, s24_to_f32, S24ToFloat)->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, f32_to_s16, FloatToS16)->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, s16be_to_s16le, S16BigToLittle)->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, s32_to_s16, S32ToS16)->Iterations(15)->Unit(benchmark::kMillisecond);
