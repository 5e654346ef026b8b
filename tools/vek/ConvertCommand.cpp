// vek convert: the first audio track of a file converted to raw PCM samples
// of another layout through the library's PCM layout converter.
#include "Commands.h"
#include "FileCommandLine.h"
#include "Json.h"
#include "MediaSource.h"
#include "Terminal.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include <vek/core/FourCCText.h>
#include <vek/filters/FilterType.h>
#include <vek/filters/audio/CAudioFormatConverter.h>
#include <vek/media/AudioFormat.h>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

// ffmpeg's names for the raw sample formats.
struct RawFormat {
    const char* name;
    uint32_t code;
};

constexpr RawFormat kRawFormats[] = {
    {"s8", AudioFormat::Int8},        {"u8", AudioFormat::UInt8},       {"s16le", AudioFormat::Int16L},
    {"s16be", AudioFormat::Int16B},   {"u16le", AudioFormat::UInt16L},  {"u16be", AudioFormat::UInt16B},
    {"s20le", AudioFormat::Int20L},   {"s20be", AudioFormat::Int20B},   {"s24le", AudioFormat::Int24L},
    {"s24be", AudioFormat::Int24B},   {"u24le", AudioFormat::UInt24L},  {"u24be", AudioFormat::UInt24B},
    {"s32le", AudioFormat::Int32L},   {"s32be", AudioFormat::Int32B},   {"u32le", AudioFormat::UInt32L},
    {"u32be", AudioFormat::UInt32B},  {"f32le", AudioFormat::Float32L}, {"f32be", AudioFormat::Float32B},
    {"f64le", AudioFormat::Float64L}, {"f64be", AudioFormat::Float64B}, {"alaw", AudioFormat::aLaw},
    {"mulaw", AudioFormat::muLaw},
};

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek convert --to FORMAT -o OUT [--json] [--quiet] FILE|URI\n"
               "\n"
               "Converts the first audio track of a PCM file (WAV, RF64, Wave64, AIFF) to\n"
               "raw interleaved samples of FORMAT, with the same channels and sample rate,\n"
               "and writes them to OUT. Narrower integers are rounded to nearest (ties to\n"
               "even) and clipped; floats become integers by scaling, rounding and\n"
               "clipping. A progress bar is drawn when standard error is a terminal.\n"
               "\n"
               "  --to FORMAT  one of:\n"
               "               ",
               out);
    for (size_t i = 0; i < std::size(kRawFormats); ++i)
        std::fprintf(out, "%s%s", kRawFormats[i].name,
                     i + 1 == std::size(kRawFormats) ? "\n" : (i % 8 == 7 ? "\n               " : " "));
    std::fputs("  -o OUT       the raw file to write (replaced when it exists)\n"
               "  --json       print a JSON summary\n"
               "  --quiet      no progress bar\n"
               "  --help       show this text\n"
               "\n"
               "exit codes: 0 converted, 1 unreadable, unrecognised or non-PCM file or an\n"
               "unwritable output, 2 bad command line\n",
               out);
}

const RawFormat* FindRawFormat(const char* name)
{
    for (const RawFormat& format : kRawFormats)
        if (!std::strcmp(format.name, name))
            return &format;
    return nullptr;
}

struct Summary {
    int64_t frames = 0;
    int64_t bytes = 0;
};

// Writes the converted bytes of `sample`; false when they cannot be had or
// written.
bool WriteSampleData(CAudioSample* sample, std::FILE* out, Summary& summary)
{
    CMediaSampleDataReference* reference = sample->GetDataReference();
    unsigned char* data = nullptr;
    int32_t length = 0;
    if (!reference || reference->Lock(data, length) < 0)
        return false;
    const bool written = std::fwrite(data, 1, size_t(length), out) == size_t(length);
    reference->Unlock();
    summary.frames += sample->GetDuration();
    summary.bytes += length;
    return written;
}

struct Conversion {
    MediaSource& source;
    CAudioConverter* converter;
    std::FILE* out;
    const char* outPath;
    ProgressBar* bar; // null: no progress shown
};

int ConvertTrack(Conversion& c, int64_t totalFrames, Summary& summary)
{
    for (;;) {
        CAudioSample* next = nullptr;
        int result = c.source.reader->ReadAudioSample(0, next);
        RObject<CAudioSample> sample(next);
        if (result >= 0 && sample)
            result = c.source.reader->ReadAudioData(0, sample.Get());
        if (result >= 0)
            result = c.converter->WriteSample(sample); // null at the end drains
        CAudioSample* made = nullptr;
        while (result >= 0 && (result = c.converter->ReadSample(made)) == RESULT_OK) {
            RObject<CAudioSample> converted(made);
            if (!WriteSampleData(converted, c.out, summary)) {
                std::fprintf(stderr, "vek convert: cannot write %s\n", c.outPath);
                return kExitFailure;
            }
        }
        if (result < 0) {
            std::fprintf(stderr, "vek convert: converting %s failed at frame %lld (%s)\n", c.source.path.c_str(),
                         static_cast<long long>(summary.frames), GetResultName(result));
            return kExitFailure;
        }
        if (c.bar && totalFrames > 0)
            c.bar->Show(double(summary.frames) / double(totalFrames));
        if (!sample)
            return kExitOk;
    }
}

void PrintSummary(bool json, const MediaSource& source, const char* outPath, const RawFormat& to,
                  const CAudioProperties* input, const Summary& summary, double seconds)
{
    const uint32_t codec = input->GetFormat();
    const double duration = input->GetSampleRate() > 0 ? double(summary.frames) / input->GetSampleRate() : 0;
    if (json) {
        std::printf("{\n  \"filename\": %s,\n  \"output\": %s,\n  \"codec_tag\": %s,\n  \"format\": %s,\n"
                    "  \"channels\": %d,\n  \"sample_rate\": %d,\n  \"frames\": %lld,\n  \"duration\": %.6f,\n"
                    "  \"bytes\": %lld,\n  \"convert_seconds\": %.6f\n}\n",
                    JsonString(source.path).c_str(), JsonString(outPath).c_str(),
                    JsonString(FourCCText(codec).c_str()).c_str(), JsonString(to.name).c_str(),
                    int(input->GetChannels()), int(input->GetSampleRate()), static_cast<long long>(summary.frames),
                    duration, static_cast<long long>(summary.bytes), seconds);
        return;
    }
    const char* name = AudioFormat::GetName(codec);
    std::printf("converted %lld frames (%.6f s, %d channels) of %s to %s: %lld bytes in %s\n",
                static_cast<long long>(summary.frames), duration, int(input->GetChannels()), name ? name : "?", to.name,
                static_cast<long long>(summary.bytes), outPath);
}

} // namespace

int RunConvert(int argc, char** argv)
{
    bool json = false;
    bool quiet = false;
    const RawFormat* to = nullptr;
    const char* outPath = nullptr;
    const auto takeFormat = [&to](const char* value) {
        to = value ? FindRawFormat(value) : nullptr;
        if (to)
            return true;
        std::fprintf(stderr, "vek convert: unknown format '%s'\n", value ? value : "");
        return false;
    };
    const auto takeOutput = [&outPath](const char* value) {
        outPath = value;
        if (value && *value)
            return true;
        std::fputs("vek convert: -o takes a file name\n", stderr);
        return false;
    };
    const char* file = nullptr;
    const int parsed = ParseFileCommandLine("convert", argc, argv, {{"--json", &json}, {"--quiet", &quiet}},
                                            {{"--to", takeFormat}, {"-o", takeOutput}}, PrintUsage, file);
    if (parsed >= 0)
        return parsed;
    if (!to || !outPath) {
        std::fprintf(stderr, "vek convert: give %s\n\n", !to ? "--to FORMAT" : "-o OUT");
        PrintUsage(stderr);
        return kExitUsage;
    }
    MediaSource source;
    const int status = OpenMediaSource("convert", file, source);
    if (status != kExitOk)
        return status;
    const int indexed = source.reader->BeginIndex();
    if (indexed < 0)
        return ReportIndexFailure("convert", source, indexed);
    const CAudioProperties* input = source.reader->GetAudioProperties(0);
    if (!input) {
        std::fprintf(stderr, "vek convert: %s has no audio track\n", source.path.c_str());
        return kExitFailure;
    }
    CAudioFormatConverter::Register();
    RObject<CAudioConverter> converter(
        CComponentInventory<CComponentFactory<CAudioConverter>>::CreateInstance(FilterType::AudioFormatConverter));
    int result = converter ? converter->SetInputProperties(input) : RESULT_OUT_OF_MEMORY;
    if (result >= 0)
        result = converter->SetOutputFormat(to->code);
    if (result >= 0)
        result = converter->Begin();
    if (result < 0) {
        const char* name = AudioFormat::GetName(input->GetFormat());
        std::fprintf(stderr, "vek convert: cannot convert the %s track of %s to %s (%s)\n", name ? name : "unknown",
                     source.path.c_str(), to->name, GetResultName(result));
        return kExitFailure;
    }
    std::FILE* out = std::fopen(outPath, "wb");
    if (!out) {
        std::fprintf(stderr, "vek convert: cannot create %s\n", outPath);
        return kExitFailure;
    }
    ProgressBar bar(stderr, "converting");
    Conversion conversion{source, converter, out, outPath, !quiet && IsTerminal(stderr) ? &bar : nullptr};
    Summary summary;
    const auto start = std::chrono::steady_clock::now();
    int converted = ConvertTrack(conversion, input->GetDuration(), summary);
    bar.Finish();
    converter->End();
    if (std::fclose(out) != 0 && converted == kExitOk) {
        std::fprintf(stderr, "vek convert: cannot write %s\n", outPath);
        converted = kExitFailure;
    }
    if (converted != kExitOk)
        return converted;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    PrintSummary(json, source, outPath, *to, input, summary, seconds);
    return kExitOk;
}

} // namespace VekTool
