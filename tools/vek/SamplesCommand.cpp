// vek samples: the samples a reader cuts from a file, track by track, in
// decode order: index, time, duration, byte position and size; for video
// also the presentation time, picture type and key-frame flag.
#include "Commands.h"
#include "FileCommandLine.h"
#include "Json.h"
#include "MediaSource.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include <vek/containers/CContainerReader.h>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek samples [--json] [--limit N] FILE|URI\n"
               "\n"
               "Lists the samples of every video, audio and subtitle track in decode order: index,\n"
               "time and duration (in seconds; the track's time units in --json), byte\n"
               "position in the file and size. Video samples also show their presentation\n"
               "time, picture type (I, P, B) and whether they are key frames (K); samples\n"
               "a decoder drops are marked X, and the units an edit trims from a sample's\n"
               "start or end are shown.\n"
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
    int64_t presentation = 0;
    char type = 0; // picture type letter; 0 for audio
    bool key = false;
    bool excluded = false;
    int32_t leadingTrim = 0, trailingTrim = 0;
};

Row Describe(int64_t index, CMediaSample* sample)
{
    Row row{index, sample->GetTime(), sample->GetDuration(), -1, 0};
    row.key = (sample->GetHint() & CMediaSample::KeyFrameAligned) != 0;
    row.excluded = (sample->GetHint() & CMediaSample::Exclude) != 0;
    row.presentation = sample->GetCompositionTime();
    sample->GetCompositionTrim(row.leadingTrim, row.trailingTrim);
    CMediaSampleDataReference* reference = sample->GetDataReference();
    if (reference && reference->IsType(CContainerDataReference::Type)) {
        auto* range = static_cast<CContainerDataReference*>(reference);
        row.position = range->GetPosition();
        row.size = range->GetLength();
    }
    return row;
}

Row Describe(int64_t index, CVideoSample* sample)
{
    Row row = Describe(index, static_cast<CMediaSample*>(sample));
    const int32_t type = sample->GetPictureType();
    row.type = type >= CVideoSample::I && type <= CVideoSample::B ? CVideoSample::PictureType[type][0] : '?';
    return row;
}

void PrintHeading(const char* kind, int32_t track, double rate, bool video)
{
    std::printf("track %d: %s, time scale %.0f\n%8s %14s ", track, kind, rate, "index", "time");
    if (video)
        std::printf("%14s %4s ", "presentation", "type");
    std::printf("%12s %12s %10s\n", "duration", "position", "size");
}

void PrintRow(const Row& row, double rate, bool json, bool first)
{
    if (json) {
        std::printf("%s\n      {\"index\": %lld, \"time\": %lld, \"duration\": %lld, \"time_seconds\": %.6f, "
                    "\"duration_seconds\": %.6f, ",
                    first ? "" : ",", static_cast<long long>(row.index), static_cast<long long>(row.time),
                    static_cast<long long>(row.duration), row.time / rate, row.duration / rate);
        if (row.type)
            std::printf("\"presentation_time\": %lld, \"picture_type\": \"%c\", \"key\": %s, ",
                        static_cast<long long>(row.presentation), row.type, row.key ? "true" : "false");
        if (row.excluded)
            std::printf("\"excluded\": true, ");
        if (row.leadingTrim || row.trailingTrim)
            std::printf("\"leading_trim\": %d, \"trailing_trim\": %d, ", row.leadingTrim, row.trailingTrim);
        std::printf("\"position\": %lld, \"size\": %d}", static_cast<long long>(row.position), row.size);
        return;
    }
    std::printf("%8lld %14.6f ", static_cast<long long>(row.index), row.time / rate);
    if (row.type)
        std::printf("%14.6f %2c%c%c ", row.presentation / rate, row.type, row.key ? 'K' : ' ', row.excluded ? 'X' : ' ');
    std::printf("%12.6f %12lld %10d", row.duration / rate, static_cast<long long>(row.position), row.size);
    if (row.excluded && !row.type)
        std::printf("  excluded");
    if (row.leadingTrim || row.trailingTrim)
        std::printf("  trim %d/%d", row.leadingTrim, row.trailingTrim);
    std::printf("\n");
}

template <typename Sample, typename Properties>
int ListTrack(CContainerReader* reader, int32_t track, int64_t limit, bool json, bool first)
{
    constexpr bool video = std::is_same_v<Sample, CVideoSample>;
    constexpr bool audio = std::is_same_v<Sample, CAudioSample>;
    const char* kind = video ? "video" : audio ? "audio" : "subtitle";
    Properties* properties = nullptr;
    if constexpr (video)
        properties = reader->GetVideoProperties(track);
    else if constexpr (audio)
        properties = reader->GetAudioProperties(track);
    else
        properties = reader->GetSubtitleProperties(track);
    const double rate = properties && properties->GetTimeScale() > 0 ? double(properties->GetTimeScale()) : 1.0;
    if (json)
        std::printf("%s\n    {\"track\": %d, \"type\": \"%s\", \"time_scale\": %.0f, \"samples\": [", first ? "" : ",",
                    track, kind, rate);
    else
        PrintHeading(kind, track, rate, video);
    int64_t index = 0;
    for (; index < limit; ++index) {
        Sample* next = nullptr;
        int result = RESULT_OK;
        if constexpr (video)
            result = reader->ReadVideoSample(track, next);
        else if constexpr (audio)
            result = reader->ReadAudioSample(track, next);
        else
            result = reader->ReadSubtitleSample(track, next);
        RObject<Sample> sample(next);
        if (result < 0) {
            std::fprintf(stderr, "vek samples: reading sample %lld of %s track %d failed (%s)\n",
                         static_cast<long long>(index), kind, track, GetResultName(result));
            return kExitFailure;
        }
        if (!sample)
            break;
        PrintRow(Describe(index, sample.Get()), rate, json, index == 0);
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
    const int32_t videoTracks = source.reader->GetVideoMediaCount();
    const int32_t audioTracks = source.reader->GetAudioMediaCount();
    for (int32_t track = 0; track < videoTracks && status == kExitOk; ++track)
        status = ListTrack<CVideoSample, CVideoProperties>(source.reader, track, limit, json, track == 0);
    for (int32_t track = 0; track < audioTracks && status == kExitOk; ++track)
        status = ListTrack<CAudioSample, CAudioProperties>(source.reader, track, limit, json,
                                                          videoTracks == 0 && track == 0);
    const int32_t subtitleTracks = source.reader->GetSubtitleMediaCount();
    for (int32_t track = 0; track < subtitleTracks && status == kExitOk; ++track)
        status = ListTrack<CSubtitleSample, CSubtitleProperties>(source.reader, track, limit, json,
                                                                videoTracks + audioTracks == 0 && track == 0);
    if (json)
        std::printf("%s]\n}\n", videoTracks + audioTracks + subtitleTracks ? "\n  " : "");
    return status;
}

} // namespace VekTool
