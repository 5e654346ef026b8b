// The video format converter against libswscale on 1920x1080 pictures, for
// the conversions hosts ask for most: I420->NV12, I420->UYVY, UYVY->I420,
// YUYV->I422, I422->I420, NV12->I420.
//
// The library converts through the whole filter (WriteSample, ReadSample,
// the output picture released so that its buffer is reused), libswscale with
// sws_scale at SWS_POINT (its fastest mode; for pairs of equal size it takes
// its unscaled special converters where it has them) into buffers allocated
// once. Both read the same tight input picture. Each benchmark iteration
// runs one pass of each method, the order alternating from pass to pass, so
// both meet the same cache and CPU-frequency conditions; a pass converts
// kFramesPerPass pictures. The counters give each method's best pass in
// frames per second (wall and this thread's CPU time) and the ratio: above 1
// the library is faster.
//
// Without libswscale (found through pkg-config when the bench is built) only
// the library's side runs.
#include <vek/filters/video/CVideoFormatConverter.h>
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CVideoSample.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include <time.h>

#if VEK_BENCH_HAVE_SWSCALE
extern "C" {
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}
#endif

using namespace Quorvex::Vek;

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kFramesPerPass = 20;

struct Pair {
    uint32_t from;
    uint32_t to;
#if VEK_BENCH_HAVE_SWSCALE
    AVPixelFormat fromPixels;
    AVPixelFormat toPixels;
#endif
};

#if VEK_BENCH_HAVE_SWSCALE
#define VEK_PAIR(from, to, fromPixels, toPixels) Pair{Four(from), Four(to), fromPixels, toPixels}
#else
#define VEK_PAIR(from, to, fromPixels, toPixels) Pair{Four(from), Four(to)}
#endif

double ThreadSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// The library's side: a begun converter and one input picture.
class VekSide {
public:
    explicit VekSide(const Pair& pair, const unsigned char* picture, int32_t bytes)
    {
        RObject<CVideoProperties> properties(new CVideoProperties());
        properties->SetFormat(pair.from);
        properties->SetSize(kWidth, kHeight);
        m_converter = RObject<CVideoFormatConverter>(new CVideoFormatConverter());
        m_converter->SetInputProperties(properties);
        RObject<CLinearDataReference> reference(CLinearDataReference::Create(bytes));
        std::memcpy(reference->GetData(), picture, size_t(bytes));
        m_input = RObject<CVideoSample>(CVideoSample::Create());
        m_input->SetDataReference(reference);
        m_ready = m_converter->SetOutputFormat(pair.to) == 0 && m_converter->Begin() == 0;
    }
    bool Ready() const { return m_ready; }

    // One picture; false on failure.
    bool Convert()
    {
        if (m_converter->WriteSample(m_input) < 0)
            return false;
        CVideoSample* made = nullptr;
        if (m_converter->ReadSample(made) != 0)
            return false;
        benchmark::DoNotOptimize(made->GetDataReference());
        made->Release();
        return true;
    }

private:
    RObject<CVideoFormatConverter> m_converter;
    RObject<CVideoSample> m_input;
    bool m_ready = false;
};

#if VEK_BENCH_HAVE_SWSCALE
class SwscaleSide {
public:
    SwscaleSide(const Pair& pair, const unsigned char* picture)
    {
        m_context = sws_getContext(kWidth, kHeight, pair.fromPixels, kWidth, kHeight, pair.toPixels, SWS_POINT,
                                   nullptr, nullptr, nullptr);
        av_image_fill_arrays(m_source, m_sourceStrides, picture, pair.fromPixels, kWidth, kHeight, 1);
        m_ready = m_context && av_image_alloc(m_target, m_targetStrides, kWidth, kHeight, pair.toPixels, 64) >= 0;
    }
    ~SwscaleSide()
    {
        sws_freeContext(m_context);
        av_freep(&m_target[0]);
    }
    bool Ready() const { return m_ready; }

    bool Convert()
    {
        const int rows = sws_scale(m_context, m_source, m_sourceStrides, 0, kHeight, m_target, m_targetStrides);
        benchmark::DoNotOptimize(m_target[0]);
        return rows == kHeight;
    }

private:
    SwsContext* m_context = nullptr;
    uint8_t* m_source[4] = {};
    int m_sourceStrides[4] = {};
    uint8_t* m_target[4] = {};
    int m_targetStrides[4] = {};
    bool m_ready = false;
};
#endif

void ConvertPictures(benchmark::State& state, Pair pair)
{
    // Tight input rows: at most 4:4:4's three full planes.
    std::vector<unsigned char> picture(size_t(kWidth) * kHeight * 3);
    for (size_t i = 0; i < picture.size(); ++i)
        picture[i] = uint8_t(i * 2654435761u >> 24);
    const PictureLayout layout = GetPictureLayout(pair.from);
    int32_t bytes = 0;
    for (int32_t plane = 0; plane < GetLayoutTraits(layout).planeCount; ++plane)
        bytes += int32_t(GetPlaneRowBytes(layout, plane, kWidth)) * GetPlaneRows(layout, plane, kHeight);

    VekSide vek(pair, picture.data(), bytes);
    if (!vek.Ready())
        return state.SkipWithError("the library cannot set up the conversion");
#if VEK_BENCH_HAVE_SWSCALE
    SwscaleSide swscale(pair, picture.data());
    if (!swscale.Ready())
        return state.SkipWithError("libswscale cannot set up the conversion");
    enum { Vek, Swscale, Methods };
#else
    enum { Vek, Methods };
#endif
    double best[Methods];
    double bestCpu[Methods];
    std::fill(best, best + Methods, 1e30);
    std::fill(bestCpu, bestCpu + Methods, 1e30);
    int pass = 0;
    for (auto _ : state) {
        for (int step = 0; step < Methods; ++step) {
            const int method = (pass + step) % Methods;
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = ThreadSeconds();
            bool done = true;
            for (int frame = 0; frame < kFramesPerPass && done; ++frame) {
#if VEK_BENCH_HAVE_SWSCALE
                done = method == Vek ? vek.Convert() : swscale.Convert();
#else
                done = vek.Convert();
#endif
            }
            if (!done)
                return state.SkipWithError(method == Vek ? "the library failed" : "libswscale failed");
            best[method] = std::min(best[method], std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
            bestCpu[method] = std::min(bestCpu[method], ThreadSeconds() - cpuStart);
        }
        ++pass;
    }
    state.counters["vek_fps"] = kFramesPerPass / best[Vek];
    state.counters["cpu_vek_fps"] = kFramesPerPass / bestCpu[Vek];
#if VEK_BENCH_HAVE_SWSCALE
    state.counters["sws_fps"] = kFramesPerPass / best[Swscale];
    state.counters["cpu_sws_fps"] = kFramesPerPass / bestCpu[Swscale];
    state.counters["vek_vs_sws"] = best[Swscale] / best[Vek];
    state.counters["cpu_vek_vs_sws"] = bestCpu[Swscale] / bestCpu[Vek];
#endif
}

} // namespace

BENCHMARK_CAPTURE(ConvertPictures, I420_NV12, VEK_PAIR("I420", "NV12", AV_PIX_FMT_YUV420P, AV_PIX_FMT_NV12))
    ->Iterations(30)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ConvertPictures, I420_UYVY, VEK_PAIR("I420", "UYVY", AV_PIX_FMT_YUV420P, AV_PIX_FMT_UYVY422))
    ->Iterations(30)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ConvertPictures, UYVY_I420, VEK_PAIR("UYVY", "I420", AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV420P))
    ->Iterations(30)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ConvertPictures, YUYV_I422, VEK_PAIR("YUYV", "I422", AV_PIX_FMT_YUYV422, AV_PIX_FMT_YUV422P))
    ->Iterations(30)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ConvertPictures, I422_I420, VEK_PAIR("I422", "I420", AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV420P))
    ->Iterations(30)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ConvertPictures, NV12_I420, VEK_PAIR("NV12", "I420", AV_PIX_FMT_NV12, AV_PIX_FMT_YUV420P))
    ->Iterations(30)->Unit(benchmark::kMillisecond);
