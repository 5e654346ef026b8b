// Timecode label <-> frame conversions, drop and non-drop, next to the
// nearest standard-library way of doing the same work: sscanf/snprintf of
// the same label text with a plain division chain, which knows nothing of
// drop-frame counting. Also time-scale conversion against integer muldiv.
#include <vek/media/CTimeCode.h>
#include <vek/media/CTimeScale.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

#include <cstdio>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

constexpr size_t LabelCount = 1024;

std::vector<int32_t> SpreadFrames(const CTimeCode& tc)
{
    std::vector<int32_t> frames(LabelCount);
    const int64_t day = tc.GetMidnightValue();
    for (size_t i = 0; i < LabelCount; ++i)
        frames[i] = static_cast<int32_t>((day - 1) * int64_t(i) / int64_t(LabelCount - 1));
    return frames;
}

std::vector<std::string> SpreadLabels(bool drop)
{
    CTimeCode tc(29.97, drop);
    std::vector<std::string> labels;
    for (int32_t frame : SpreadFrames(tc)) {
        tc.FromFrames(frame);
        labels.emplace_back(tc.ToString(nullptr, ';'));
    }
    return labels;
}

void LabelToFrames(benchmark::State& state, bool drop)
{
    const std::vector<std::string> labels = SpreadLabels(drop);
    CTimeCode tc(29.97, drop);
    size_t i = 0;
    for (auto _ : state) {
        tc.FromString(labels[i++ % LabelCount].c_str(), true);
        benchmark::DoNotOptimize(tc.GetTotalFrames());
    }
}

void FramesToLabel(benchmark::State& state, bool drop)
{
    CTimeCode tc(29.97, drop);
    const std::vector<int32_t> frames = SpreadFrames(tc);
    char text[CTimeCode::LabelCapacity];
    size_t i = 0;
    for (auto _ : state) {
        tc.FromFrames(frames[i++ % LabelCount]);
        benchmark::DoNotOptimize(tc.ToString(text, ';'));
    }
}

void BM_LabelToFrames_Drop(benchmark::State& state) { LabelToFrames(state, true); }
void BM_LabelToFrames_NonDrop(benchmark::State& state) { LabelToFrames(state, false); }
void BM_FramesToLabel_Drop(benchmark::State& state) { FramesToLabel(state, true); }
void BM_FramesToLabel_NonDrop(benchmark::State& state) { FramesToLabel(state, false); }

// Label fields only, without text: the drop-frame iteration and the split.
void BM_FramesToFields_Drop(benchmark::State& state)
{
    CTimeCode tc(29.97, true);
    const std::vector<int32_t> frames = SpreadFrames(tc);
    size_t i = 0;
    for (auto _ : state) {
        tc.FromFrames(frames[i++ % LabelCount]);
        benchmark::DoNotOptimize(tc.ToTime());
    }
}

void BM_StdSscanf_LabelToFrames(benchmark::State& state)
{
    const std::vector<std::string> labels = SpreadLabels(false);
    size_t i = 0;
    for (auto _ : state) {
        signed char h = 0, m = 0, s = 0, f = 0;
        char separator = ':';
        std::sscanf(labels[i++ % LabelCount].c_str(), "%2hhd%*c%2hhd%*c%2hhd%c%2hhd", &h, &m, &s, &separator, &f);
        benchmark::DoNotOptimize(((h * 60 + m) * 60 + s) * 30 + f);
    }
}

void BM_StdSnprintf_FramesToLabel(benchmark::State& state)
{
    const std::vector<int32_t> frames = SpreadFrames(CTimeCode(29.97, false));
    char text[48];
    size_t i = 0;
    for (auto _ : state) {
        const int32_t total = frames[i++ % LabelCount];
        std::snprintf(text, sizeof text, "%02d:%02d:%02d:%02d", total / 108000, total / 1800 % 60,
                      total / 30 % 60, total % 30);
        benchmark::DoNotOptimize(text);
    }
}

void BM_PlainDivision_FramesToFields(benchmark::State& state)
{
    const std::vector<int32_t> frames = SpreadFrames(CTimeCode(29.97, false));
    size_t i = 0;
    for (auto _ : state) {
        const int32_t total = frames[i++ % LabelCount];
        CTimeCode::TimeCodeTime t{uint8_t(total / 108000), uint8_t(total / 1800 % 60), uint8_t(total / 30 % 60),
                                  uint8_t(total % 30)};
        benchmark::DoNotOptimize(t);
    }
}

void BM_TimeScale_ToTime(benchmark::State& state)
{
    const CTimeScale scale(48000);
    int64_t t = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(scale.ToTime(t, 10000000));
        t += 4801;
    }
}

void BM_PlainMulDiv_ToTime(benchmark::State& state)
{
    volatile int64_t from = 48000;
    int64_t t = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(t * 10000000 / from);
        t += 4801;
    }
}

} // namespace

BENCHMARK(BM_LabelToFrames_Drop);
BENCHMARK(BM_LabelToFrames_NonDrop);
BENCHMARK(BM_StdSscanf_LabelToFrames);
BENCHMARK(BM_FramesToLabel_Drop);
BENCHMARK(BM_FramesToLabel_NonDrop);
BENCHMARK(BM_StdSnprintf_FramesToLabel);
BENCHMARK(BM_FramesToFields_Drop);
BENCHMARK(BM_PlainDivision_FramesToFields);
BENCHMARK(BM_TimeScale_ToTime);
BENCHMARK(BM_PlainMulDiv_ToTime);
