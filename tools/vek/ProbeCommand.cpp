// vek probe: what a media file is: its container format, duration and size,
// its container facts (broadcast-wave text, UMID, time reference ...) and
// every track (video first, then audio) with its properties, its stream's
// own facts and its sample count, as text for people or
// one JSON object for scripts.
#include "Commands.h"
#include "FileCommandLine.h"
#include "Json.h"
#include "MediaSource.h"
#include "MediaText.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <vek/containers/CMediaIndexer.h>
#include <vek/containers/ContainerAnalyzer.h>
#include <vek/containers/readers/mov/CMovieFileReader.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperty.h>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

enum { GrowthLookMilliseconds = 400 };

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek probe [--json] FILE|URI\n"
               "\n"
               "Recognises the container of a file (a path or a file:// URI), indexes it\n"
               "and prints its format, duration, container facts and every track with its\n"
               "properties and sample count. A fragmented movie that is still being\n"
               "written is reported as growing.\n"
               "\n"
               "  --json   print one JSON object: a \"format\" section and a \"tracks\" array\n"
               "  --help   show this text\n"
               "\n"
               "exit codes: 0 probed, 1 unreadable or unrecognised file, 2 bad command line\n",
               out);
}

// One audio track's facts, in the order they are printed.
struct AudioFacts {
    uint32_t format = 0;
    int32_t sampleRate = 0;
    int32_t channels = 0;
    int32_t bitsPerSample = 0;
    int32_t bytesPerFrame = 0;
    int32_t framesPerPacket = 0;
    int32_t bytesPerPacket = 0;
    int64_t bitRate = 0;
    int64_t frames = 0;
    int64_t samples = 0;
    double seconds = 0;
    std::vector<uint32_t> positions; // empty when the file gives none
    std::vector<std::pair<std::string, double>> loudness;
};

// One video track's facts, in the order they are printed.
struct VideoFacts {
    uint32_t format = 0;
    int32_t width = 0;
    int32_t height = 0;
    int64_t aspectNumerator = 0, aspectDenominator = 0;
    int64_t rateNumerator = 0, rateDenominator = 0;
    int32_t subsamplingAcross = 0, subsamplingDown = 0;
    uint32_t fieldOrder = 0;
    uint32_t colorSpace = 0;
    int64_t bitRate = 0;
    int64_t timeScale = 0;
    double seconds = 0;
    int64_t samples = 0;
    std::vector<std::pair<std::string, std::string>> tags; // the description's own facts
};

struct SubtitleFacts {
    uint32_t format = 0;
    int64_t timeScale = 0;
    double seconds = 0;
    int64_t samples = 0;
    std::vector<std::pair<std::string, std::string>> tags;
};

struct ProbeFacts {
    bool growing = false; // a recording still being written
    std::string formatName;
    uint32_t formatCode = 0;
    double seconds = 0;
    std::vector<std::pair<std::string, std::string>> tags;
    std::vector<VideoFacts> video;
    std::vector<AudioFacts> audio;
    std::vector<SubtitleFacts> subtitles;

    size_t TrackCount() const { return video.size() + audio.size() + subtitles.size(); }
};

const char* FieldOrderText(uint32_t order)
{
    static const char* const names[] = {"unknown", "progressive", "top field first", "bottom field first"};
    return order < 4 ? names[order] : "?";
}

VideoFacts DescribeVideo(CVideoProperties* properties, CMediaIndexer* index)
{
    VideoFacts facts;
    facts.format = properties->GetFormat();
    facts.width = properties->GetWidth();
    facts.height = properties->GetHeight();
    properties->GetPixelAspectRatio(facts.aspectNumerator, facts.aspectDenominator);
    properties->GetFrameRate(facts.rateNumerator, facts.rateDenominator);
    properties->GetSubsampling(facts.subsamplingAcross, facts.subsamplingDown);
    facts.fieldOrder = properties->GetFieldOrder();
    facts.colorSpace = properties->GetColorSpace();
    facts.bitRate = properties->GetBitRate();
    facts.timeScale = properties->GetTimeScale();
    facts.seconds = index ? index->GetDurationInSeconds() : 0;
    facts.samples = index ? index->GetSampleCount() : 0;
    facts.tags = MediaTags(properties);
    return facts;
}

AudioFacts DescribeAudio(CAudioProperties* properties, int64_t samples)
{
    AudioFacts facts;
    facts.format = properties->GetFormat();
    facts.sampleRate = properties->GetSampleRate();
    facts.channels = properties->GetChannels();
    facts.bitsPerSample = properties->GetBitsPerSample();
    facts.bytesPerFrame = properties->GetBytesPerFrame();
    facts.framesPerPacket = properties->GetFramesPerPacket();
    facts.bytesPerPacket = properties->GetBytesPerPacket();
    facts.bitRate = properties->GetBitRate();
    facts.frames = properties->GetDuration();
    facts.seconds = facts.sampleRate > 0 ? double(facts.frames) / facts.sampleRate : 0;
    facts.samples = samples;
    for (int32_t channel = 0; channel < facts.channels && channel < CAudioProperties::MaxChannels; ++channel) {
        uint32_t position = 0;
        properties->GetSpeakerPosition(channel, position);
        facts.positions.push_back(position);
    }
    bool anyPosition = false;
    for (uint32_t position : facts.positions)
        anyPosition |= position != 0;
    if (!anyPosition)
        facts.positions.clear();
    facts.loudness = LoudnessValues(properties);
    return facts;
}

// Reads the file's facts; kExitOk or kExitFailure after a message.
int Probe(MediaSource& source, ProbeFacts& facts)
{
    // Headers and the whole index pass, on this thread: it counts the samples.
    int result = RESULT_OK;
    ContainerAnalyzer analyzer =
        ContainerAnalyzer::Analyze(ContainerReader::FromObject(source.reader), &result);
    if (analyzer.IsNull())
        return ReportIndexFailure("probe", source, result);
    CContainerReader* reader = source.reader;
    facts.formatName = analyzer.GetFormatName();
    facts.tags = ContainerTags(reader);
    facts.seconds = analyzer.GetDuration();
    const int32_t videoTracks = reader->GetVideoMediaCount();
    for (int32_t track = 0; track < videoTracks; ++track) {
        CVideoProperties* properties = reader->GetVideoProperties(track);
        if (properties)
            facts.video.push_back(DescribeVideo(properties, analyzer.GetVideoIndexer(track)));
    }
    const int32_t tracks = reader->GetAudioMediaCount();
    for (int32_t track = 0; track < tracks; ++track) {
        CAudioProperties* properties = reader->GetAudioProperties(track);
        if (properties)
            facts.audio.push_back(DescribeAudio(properties, analyzer.GetAudioSampleCount(track)));
    }
    const int32_t subtitleTracks = reader->GetSubtitleMediaCount();
    for (int32_t track = 0; track < subtitleTracks; ++track) {
        CSubtitleProperties* properties = reader->GetSubtitleProperties(track);
        if (!properties)
            continue;
        SubtitleFacts subtitle;
        subtitle.format = properties->GetFormat();
        subtitle.timeScale = properties->GetTimeScale();
        subtitle.seconds = subtitle.timeScale > 0 ? double(properties->GetDuration()) / subtitle.timeScale : 0;
        subtitle.samples = analyzer.GetSubtitleSampleCount(track);
        subtitle.tags = MediaTags(properties);
        facts.subtitles.push_back(subtitle);
    }
    return kExitOk;
}

// Continuation lines of a multi-line value line up under its first line.
std::string IndentLines(const std::string& value)
{
    std::string text;
    for (char c : value) {
        if (c == '\r')
            continue;
        text += c;
        if (c == '\n')
            text.append(35, ' ');
    }
    return text;
}

void PrintVideoText(size_t index, const VideoFacts& v)
{
    std::printf("track %zu: video, %s ('%s')\n", index, VideoFormatName(v.format).c_str(), CodeText(v.format).c_str());
    std::printf("  size:              %d x %d\n", v.width, v.height);
    std::printf("  pixel aspect:      %lld:%lld\n", static_cast<long long>(v.aspectNumerator),
                static_cast<long long>(v.aspectDenominator));
    std::printf("  frame rate:        %lld/%lld\n", static_cast<long long>(v.rateNumerator),
                static_cast<long long>(v.rateDenominator));
    std::printf("  subsampling:       %d x %d\n", v.subsamplingAcross, v.subsamplingDown);
    std::printf("  field order:       %s\n", FieldOrderText(v.fieldOrder));
    std::printf("  colour space:      %s\n", v.colorSpace ? CodeText(v.colorSpace).c_str() : "unknown");
    std::printf("  bit rate:          %lld bit/s\n", static_cast<long long>(v.bitRate));
    std::printf("  time scale:        %lld\n", static_cast<long long>(v.timeScale));
    std::printf("  duration:          %.6f s\n", v.seconds);
    std::printf("  samples:           %lld\n", static_cast<long long>(v.samples));
    for (const auto& [key, value] : v.tags)
        std::printf("  %-32s %s\n", key.c_str(), value.c_str());
}

void PrintVideoJson(size_t index, const VideoFacts& v)
{
    std::printf("%s\n    {\n", index ? "," : "");
    std::printf("      \"index\": %zu,\n      \"type\": \"video\",\n", index);
    std::printf("      \"codec\": %s,\n", JsonString(VideoFormatName(v.format)).c_str());
    std::printf("      \"codec_tag\": %s,\n", JsonString(CodeText(v.format)).c_str());
    std::printf("      \"width\": %d,\n      \"height\": %d,\n", v.width, v.height);
    std::printf("      \"sample_aspect_ratio\": \"%lld:%lld\",\n", static_cast<long long>(v.aspectNumerator),
                static_cast<long long>(v.aspectDenominator));
    std::printf("      \"frame_rate\": \"%lld/%lld\",\n", static_cast<long long>(v.rateNumerator),
                static_cast<long long>(v.rateDenominator));
    std::printf("      \"subsampling\": [%d, %d],\n", v.subsamplingAcross, v.subsamplingDown);
    std::printf("      \"field_order\": %s,\n", JsonString(FieldOrderText(v.fieldOrder)).c_str());
    std::printf("      \"colour_space\": %s,\n", JsonString(v.colorSpace ? CodeText(v.colorSpace) : "").c_str());
    std::printf("      \"bit_rate\": %lld,\n      \"time_scale\": %lld,\n", static_cast<long long>(v.bitRate),
                static_cast<long long>(v.timeScale));
    std::printf("      \"duration\": %.6f,\n      \"samples\": %lld,\n", v.seconds, static_cast<long long>(v.samples));
    std::printf("      \"tags\": {");
    for (size_t i = 0; i < v.tags.size(); ++i)
        std::printf("%s\n        %s: %s", i ? "," : "", JsonString(v.tags[i].first).c_str(),
                    JsonString(v.tags[i].second).c_str());
    std::printf("%s}\n    }", v.tags.empty() ? "" : "\n      ");
}

void PrintText(const MediaSource& source, const ProbeFacts& facts)
{
    std::printf("file:      %s\n", source.path.c_str());
    std::printf("format:    %s\n", facts.formatName.c_str());
    std::printf("size:      %lld bytes\n", static_cast<long long>(source.size));
    std::printf("duration:  %s (%.6f s)\n", ClockText(facts.seconds).c_str(), facts.seconds);
    if (facts.growing)
        std::printf("growing:   yes, the file is still being written (vek index --follow follows it)\n");
    std::printf("tracks:    %zu\n", facts.TrackCount());
    for (const auto& [key, value] : facts.tags)
        std::printf("  %-32s %s\n", key.c_str(), IndentLines(value).c_str());
    for (size_t i = 0; i < facts.video.size(); ++i)
        PrintVideoText(i, facts.video[i]);
    for (size_t i = 0; i < facts.audio.size(); ++i) {
        const AudioFacts& a = facts.audio[i];
        std::printf("track %zu: audio, %s ('%s')\n", facts.video.size() + i, FormatName(a.format).c_str(),
                    CodeText(a.format).c_str());
        std::printf("  sample rate:       %d Hz\n", a.sampleRate);
        std::printf("  channels:          %d%s%s\n", a.channels, a.positions.empty() ? "" : " ",
                    a.positions.empty() ? "" : PositionsText(a.positions).c_str());
        std::printf("  bits per sample:   %d\n", a.bitsPerSample);
        std::printf("  bytes per frame:   %d\n", a.bytesPerFrame);
        std::printf("  frames per packet: %d\n", a.framesPerPacket);
        std::printf("  bytes per packet:  %d\n", a.bytesPerPacket);
        std::printf("  bit rate:          %lld bit/s\n", static_cast<long long>(a.bitRate));
        std::printf("  frames:            %lld\n", static_cast<long long>(a.frames));
        std::printf("  duration:          %.6f s\n", a.seconds);
        std::printf("  samples:           %lld\n", static_cast<long long>(a.samples));
        for (const auto& [key, value] : a.loudness)
            std::printf("  %-32s %.2f\n", key.c_str(), value);
    }
    for (size_t i = 0; i < facts.subtitles.size(); ++i) {
        const SubtitleFacts& t = facts.subtitles[i];
        std::printf("track %zu: subtitles, %s ('%s')\n", facts.video.size() + facts.audio.size() + i,
                    SubtitleFormatName(t.format).c_str(), CodeText(t.format).c_str());
        std::printf("  time scale:        %lld\n", static_cast<long long>(t.timeScale));
        std::printf("  duration:          %.6f s\n", t.seconds);
        std::printf("  samples:           %lld\n", static_cast<long long>(t.samples));
        for (const auto& [key, value] : t.tags)
            std::printf("  %-32s %s\n", key.c_str(), value.c_str());
    }
}

// A fragmented movie without the index its writer appends last, whose file
// grew since it was opened or grows within a short look.
bool IsGrowing(const MediaSource& source)
{
    const auto* movie = dynamic_cast<const CMovieFileReader*>(source.reader.Get());
    if (!movie || !movie->MayStillGrow())
        return false;
    if (FileSize(source.path) > source.size)
        return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(GrowthLookMilliseconds));
    return FileSize(source.path) > source.size;
}

void PrintJson(const MediaSource& source, const ProbeFacts& facts)
{
    std::printf("{\n  \"format\": {\n");
    std::printf("    \"filename\": %s,\n", JsonString(source.path).c_str());
    std::printf("    \"format_name\": %s,\n", JsonString(facts.formatName).c_str());
    std::printf("    \"size\": %lld,\n", static_cast<long long>(source.size));
    std::printf("    \"duration\": %.6f,\n", facts.seconds);
    std::printf("    \"growing\": %s,\n", facts.growing ? "true" : "false");
    std::printf("    \"nb_tracks\": %zu,\n", facts.TrackCount());
    std::printf("    \"tags\": {");
    for (size_t i = 0; i < facts.tags.size(); ++i)
        std::printf("%s\n      %s: %s", i ? "," : "", JsonString(facts.tags[i].first).c_str(),
                    JsonString(facts.tags[i].second).c_str());
    std::printf("%s}\n  },\n  \"tracks\": [", facts.tags.empty() ? "" : "\n    ");
    for (size_t i = 0; i < facts.video.size(); ++i)
        PrintVideoJson(i, facts.video[i]);
    for (size_t i = 0; i < facts.audio.size(); ++i) {
        const AudioFacts& a = facts.audio[i];
        const size_t index = facts.video.size() + i;
        std::printf("%s\n    {\n", index ? "," : "");
        std::printf("      \"index\": %zu,\n      \"type\": \"audio\",\n", index);
        std::printf("      \"codec\": %s,\n", JsonString(FormatName(a.format)).c_str());
        std::printf("      \"codec_tag\": %s,\n", JsonString(CodeText(a.format)).c_str());
        std::printf("      \"sample_rate\": %d,\n      \"channels\": %d,\n", a.sampleRate, a.channels);
        std::printf("      \"channel_positions\": [");
        for (size_t p = 0; p < a.positions.size(); ++p)
            std::printf("%s%s", p ? ", " : "", JsonString(PositionName(a.positions[p])).c_str());
        std::printf("],\n");
        std::printf("      \"bits_per_sample\": %d,\n      \"bytes_per_frame\": %d,\n", a.bitsPerSample,
                    a.bytesPerFrame);
        std::printf("      \"frames_per_packet\": %d,\n      \"bytes_per_packet\": %d,\n", a.framesPerPacket,
                    a.bytesPerPacket);
        std::printf("      \"bit_rate\": %lld,\n", static_cast<long long>(a.bitRate));
        std::printf("      \"frames\": %lld,\n      \"duration\": %.6f,\n", static_cast<long long>(a.frames),
                    a.seconds);
        std::printf("      \"samples\": %lld", static_cast<long long>(a.samples));
        for (const auto& [key, value] : a.loudness)
            std::printf(",\n      %s: %.2f", JsonString(key).c_str(), value);
        std::printf("\n    }");
    }
    for (size_t i = 0; i < facts.subtitles.size(); ++i) {
        const SubtitleFacts& t = facts.subtitles[i];
        const size_t index = facts.video.size() + facts.audio.size() + i;
        std::printf("%s\n    {\n", index ? "," : "");
        std::printf("      \"index\": %zu,\n      \"type\": \"subtitle\",\n", index);
        std::printf("      \"codec\": %s,\n", JsonString(SubtitleFormatName(t.format)).c_str());
        std::printf("      \"codec_tag\": %s,\n", JsonString(CodeText(t.format)).c_str());
        std::printf("      \"time_scale\": %lld,\n      \"duration\": %.6f,\n", static_cast<long long>(t.timeScale),
                    t.seconds);
        std::printf("      \"samples\": %lld,\n      \"tags\": {", static_cast<long long>(t.samples));
        for (size_t k = 0; k < t.tags.size(); ++k)
            std::printf("%s\n        %s: %s", k ? "," : "", JsonString(t.tags[k].first).c_str(),
                        JsonString(t.tags[k].second).c_str());
        std::printf("%s}\n    }", t.tags.empty() ? "" : "\n      ");
    }
    std::printf("%s]\n}\n", facts.TrackCount() == 0 ? "" : "\n  ");
}

} // namespace

int RunProbe(int argc, char** argv)
{
    bool json = false;
    const char* file = nullptr;
    const int parsed = ParseFileCommandLine("probe", argc, argv, {{"--json", &json}}, {}, PrintUsage, file);
    if (parsed >= 0)
        return parsed;
    MediaSource source;
    int status = OpenMediaSource("probe", file, source);
    ProbeFacts facts;
    if (status == kExitOk)
        status = Probe(source, facts);
    if (status != kExitOk)
        return status;
    facts.growing = IsGrowing(source);
    if (json)
        PrintJson(source, facts);
    else
        PrintText(source, facts);
    return kExitOk;
}

} // namespace VekTool
