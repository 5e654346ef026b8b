// vek samples: the samples a reader cuts from a file, track by track, in
// decode order: index, time, duration, byte position and size.
#include "Commands.h"
#include "FileCommandLine.h"
#include "Json.h"
#include "MediaSource.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <vek/containers/CContainerReader.h>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek samples [--json] [--limit N] FILE|URI\n"
               "\n"
               "Lists the samples of every audio track in decode order: index, time and\n"
               "duration (in the track's time units and in seconds), byte position in\n"
               "the file and size.\n"
               "\n"
               "  --limit N  stop after N samples per track\n"
               "  --json     print one JSON object with a \"tracks\" array\n"
               "  --help     show this text\n"
               "\n"
               "exit codes: 0 listed, 1 unreadable or unrecognised file, 2 bad command line\n",
               out);
}

struct Row {
    int64_t index, time, duration, position;
    int32_t size;
};

Row Describe(int64_t index, CMediaSample* sample)
{
    Row row{index, sample->GetTime(), sample->GetDuration(), -1, 0};
    CMediaSampleDataReference* reference = sample->GetDataReference();
    if (reference && reference->IsType(CContainerDataReference::Type)) {
        auto* range = static_cast<CContainerDataReference*>(reference);
        row.position = range->GetPosition();
        row.size = range->GetLength();
    }
    return row;
}

int ListAudioTrack(CContainerReader* reader, int32_t track, int64_t limit, bool json)
{
    CAudioProperties* properties = reader->GetAudioProperties(track);
    const double rate = properties && properties->GetTimeScale() > 0 ? double(properties->GetTimeScale()) : 1.0;
    if (json)
        std::printf("%s\n    {\"track\": %d, \"type\": \"audio\", \"time_scale\": %.0f, \"samples\": [", track ? "," : "",
                    track, rate);
    else
        std::printf("track %d: audio, time scale %.0f\n%8s %14s %12s %12s %10s\n", track, rate, "index", "time",
                    "duration", "position", "size");
    int64_t index = 0;
    for (; index < limit; ++index) {
        CAudioSample* next = nullptr;
        const int result = reader->ReadAudioSample(track, next);
        RObject<CAudioSample> sample(next);
        if (result < 0) {
            std::fprintf(stderr, "vek samples: reading sample %lld of track %d failed (%s)\n",
                         static_cast<long long>(index), track, GetResultName(result));
            return kExitFailure;
        }
        if (!sample)
            break;
        const Row row = Describe(index, sample);
        if (json)
            std::printf("%s\n      {\"index\": %lld, \"time\": %lld, \"duration\": %lld, \"time_seconds\": %.6f, "
                        "\"duration_seconds\": %.6f, \"position\": %lld, \"size\": %d}",
                        index ? "," : "", static_cast<long long>(row.index), static_cast<long long>(row.time),
                        static_cast<long long>(row.duration), row.time / rate, row.duration / rate,
                        static_cast<long long>(row.position), row.size);
        else
            std::printf("%8lld %14.6f %12.6f %12lld %10d\n", static_cast<long long>(row.index), row.time / rate,
                        row.duration / rate, static_cast<long long>(row.position), row.size);
    }
    if (json)
        std::printf("%s]}", index ? "\n    " : "");
    return kExitOk;
}

} // namespace

int RunSamples(int argc, char** argv)
{
    bool json = false;
    int64_t limit = INT64_MAX;
    const auto takeLimit = [&limit](const char* value) {
        char* end = nullptr;
        limit = value ? std::strtoll(value, &end, 10) : -1;
        if (limit >= 0 && end && !*end)
            return true;
        std::fputs("vek samples: --limit takes a count of 0 or more\n", stderr);
        return false;
    };
    const char* file = nullptr;
    const int parsed =
        ParseFileCommandLine("samples", argc, argv, {{"--json", &json}}, {{"--limit", takeLimit}}, PrintUsage, file);
    if (parsed >= 0)
        return parsed;
    MediaSource source;
    int status = OpenMediaSource("samples", file, source);
    if (status != kExitOk)
        return status;
    const int indexed = source.reader->BeginIndex();
    if (indexed < 0)
        return ReportIndexFailure("samples", source, indexed);
    if (json)
        std::printf("{\n  \"filename\": %s,\n  \"tracks\": [", JsonString(source.path).c_str());
    const int32_t tracks = source.reader->GetAudioMediaCount();
    for (int32_t track = 0; track < tracks && status == kExitOk; ++track)
        status = ListAudioTrack(source.reader, track, limit, json);
    if (json)
        std::printf("%s]\n}\n", tracks ? "\n  " : "");
    return status;
}

} // namespace VekTool
