// vek index: indexes a file on the library's background index thread, with
// a progress bar on a terminal, and reports the outcome per track.
#include "Commands.h"
#include "FileCommandLine.h"
#include "Json.h"
#include "MediaSource.h"
#include "MediaText.h"
#include "Terminal.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <vek/containers/CIndexer.h>
#include <vek/containers/readers/mov/CMovieFileReader.h>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

enum : int32_t { DefaultFollowWait = 5000 };

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek index [--json] [--quiet] [--follow [--wait MS]] FILE|URI\n"
               "\n"
               "Indexes a file on a background thread (a progress bar is drawn when\n"
               "standard error is a terminal) and prints the index state, the duration and\n"
               "the number of samples of each track.\n"
               "\n"
               "  --json       print one JSON object\n"
               "  --quiet      no progress bar or progress line\n"
               "  --follow     follow a recording still being written (fragmented MP4 and\n"
               "               QuickTime): index each fragment as it is completed, with a live\n"
               "               progress line, until the file stops growing\n"
               "  --wait MS    with --follow: how long the file may stay unchanged before the\n"
               "               recording counts as finished (default 5000)\n"
               "  --help       show this text\n"
               "\n"
               "exit codes: 0 indexed, 1 unreadable, unrecognised or failed file, 2 bad command line\n",
               out);
}

int OnProgress(void* context, unsigned int, double progress)
{
    static_cast<ProgressBar*>(context)->Show(progress);
    return 0;
}

std::string StateText(unsigned int state)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>((state >> shift) & 0xFF);
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

} // namespace

// Takes the --wait value: whole milliseconds from 1 to the longest read wait.
bool TakeWait(const char* value, int32_t& wait)
{
    char* end = nullptr;
    const long long parsed = value ? std::strtoll(value, &end, 10) : 0;
    if (!value || *end != '\0' || parsed < 1 || parsed > CContainerReader::MaxReadTimeout) {
        std::fprintf(stderr, "vek index: --wait takes milliseconds from 1 to %d\n",
                     int(CContainerReader::MaxReadTimeout));
        return false;
    }
    wait = int32_t(parsed);
    return true;
}

// The line a followed recording shows while it grows: media time indexed,
// bytes walked of the file as it stands, samples so far.
void ShowFollowLine(CIndexer* indexer, const CMovieFileReader* movie)
{
    double seconds = 0;
    int64_t samples = 0;
    const auto add = [&](CMediaIndexer* index) {
        if (!index)
            return;
        seconds = std::max(seconds, index->GetDurationInSeconds());
        samples += index->GetSampleCount();
    };
    for (int32_t track = 0; track < indexer->GetVideoMediaCount(); ++track)
        add(indexer->GetVideoIndexer(track));
    for (int32_t track = 0; track < indexer->GetAudioMediaCount(); ++track)
        add(indexer->GetAudioIndexer(track));
    const CMovieFileReader::WalkProgress walk = movie ? movie->GetWalkProgress() : CMovieFileReader::WalkProgress{};
    const bool large = walk.fileBytes >= 10000000;
    const double unit = large ? 1e6 : 1e3;
    std::fprintf(stderr, "\rfollowing  %s indexed, %.1f of %.1f %s, %lld samples   ", ClockText(seconds).c_str(),
                 double(walk.bytesWalked) / unit, double(walk.fileBytes) / unit, large ? "MB" : "kB",
                 static_cast<long long>(samples));
    std::fflush(stderr);
}

int RunIndex(int argc, char** argv)
{
    bool json = false;
    bool quiet = false;
    bool follow = false;
    int32_t wait = DefaultFollowWait;
    const char* file = nullptr;
    const int parsed = ParseFileCommandLine(
        "index", argc, argv, {{"--json", &json}, {"--quiet", &quiet}, {"--follow", &follow}},
        {{"--wait", [&wait](const char* value) { return TakeWait(value, wait); }}}, PrintUsage, file);
    if (parsed >= 0)
        return parsed;
    MediaSource source;
    const int status = OpenMediaSource("index", file, source);
    if (status != kExitOk)
        return status;
    const auto* movie = dynamic_cast<const CMovieFileReader*>(source.reader.Get());
    if (follow && !movie) {
        std::fprintf(stderr, "vek index: --follow reads fragmented MP4 and QuickTime files; %s is %s\n",
                     source.path.c_str(), source.reader->GetFormatName());
        return kExitFailure;
    }
    // The reader's streams then wait for the file to grow instead of ending.
    if (follow && source.reader->SetReadTimeout(wait) < 0)
        return ReportIndexFailure("index", source, RESULT_ARGUMENT_OUT_OF_RANGE);
    RObject<CIndexer> indexer(CIndexer::Create(source.reader));
    if (!indexer)
        return ReportIndexFailure("index", source, RESULT_OUT_OF_MEMORY);
    const bool showProgress = !quiet && IsTerminal(stderr);
    ProgressBar bar(stderr, "indexing");
    if (showProgress && !follow)
        indexer->SetProgressCallback(OnProgress, &bar);
    const auto start = std::chrono::steady_clock::now();
    const int begun = indexer->Begin(true);
    if (begun < 0)
        return ReportIndexFailure("index", source, begun);
    while (!indexer->WaitForIndex(200)) {
        if (follow && showProgress)
            ShowFollowLine(indexer, movie);
    }
    indexer->End();
    if (follow && showProgress) {
        ShowFollowLine(indexer, movie);
        std::fputc('\n', stderr);
    }
    bar.Finish();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const unsigned int state = indexer->GetState();
    // Every track, video first, then audio and subtitles, numbered as vek probe numbers them.
    struct Row {
        const char* type;
        CMediaIndexer* index;
    };
    std::vector<Row> rows;
    for (int32_t track = 0; track < indexer->GetVideoMediaCount(); ++track)
        rows.push_back({"video", indexer->GetVideoIndexer(track)});
    for (int32_t track = 0; track < indexer->GetAudioMediaCount(); ++track)
        rows.push_back({"audio", indexer->GetAudioIndexer(track)});
    for (int32_t track = 0; track < indexer->GetSubtitleMediaCount(); ++track)
        rows.push_back({"subtitle", indexer->GetSubtitleIndexer(track)});
    if (json)
        std::printf("{\n  \"filename\": %s,\n  \"state\": %s,\n  \"duration\": %.6f,\n  \"index_seconds\": %.6f,\n"
                    "  \"tracks\": [",
                    JsonString(source.path).c_str(), JsonString(StateText(state)).c_str(), indexer->GetDuration(),
                    seconds);
    else
        std::printf("file:     %s\nstate:    %s\nduration: %.6f s\nindexed in %.3f s\n", source.path.c_str(),
                    StateText(state).c_str(), indexer->GetDuration(), seconds);
    for (size_t track = 0; track < rows.size(); ++track) {
        CMediaIndexer* index = rows[track].index;
        const long long samples = index ? index->GetSampleCount() : 0;
        const double duration = index ? index->GetDurationInSeconds() : 0.0;
        const long long bitRate = index ? index->GetBitRate() : 0;
        if (json)
            std::printf("%s\n    {\"track\": %zu, \"type\": \"%s\", \"samples\": %lld, \"duration\": %.6f, "
                        "\"bit_rate\": %lld}",
                        track ? "," : "", track, rows[track].type, samples, duration, bitRate);
        else
            std::printf("track %zu: %s, %lld samples, %.6f s, %lld bit/s\n", track, rows[track].type, samples, duration,
                        bitRate);
    }
    if (json)
        std::printf("%s]\n}\n", rows.empty() ? "" : "\n  ");
    return state == CIndexer::Complete ? kExitOk : kExitFailure;
}

} // namespace VekTool
