// vek index: indexes a file on the library's background index thread, with
// a progress bar on a terminal, and reports the outcome per track.
#include "Commands.h"
#include "FileCommandLine.h"
#include "Json.h"
#include "MediaSource.h"
#include "Terminal.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include <vek/containers/CIndexer.h>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek index [--json] [--quiet] FILE|URI\n"
               "\n"
               "Indexes a file on a background thread (a progress bar is drawn when\n"
               "standard error is a terminal) and prints the index state, the duration and\n"
               "the number of samples of each track.\n"
               "\n"
               "  --json    print one JSON object\n"
               "  --quiet   no progress bar\n"
               "  --help    show this text\n"
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

int RunIndex(int argc, char** argv)
{
    bool json = false;
    bool quiet = false;
    const char* file = nullptr;
    const int parsed =
        ParseFileCommandLine("index", argc, argv, {{"--json", &json}, {"--quiet", &quiet}}, {}, PrintUsage, file);
    if (parsed >= 0)
        return parsed;
    MediaSource source;
    const int status = OpenMediaSource("index", file, source);
    if (status != kExitOk)
        return status;
    RObject<CIndexer> indexer(CIndexer::Create(source.reader));
    if (!indexer)
        return ReportIndexFailure("index", source, RESULT_OUT_OF_MEMORY);
    ProgressBar bar(stderr, "indexing");
    if (!quiet && IsTerminal(stderr))
        indexer->SetProgressCallback(OnProgress, &bar);
    const auto start = std::chrono::steady_clock::now();
    const int begun = indexer->Begin(true);
    if (begun < 0)
        return ReportIndexFailure("index", source, begun);
    while (!indexer->WaitForIndex(200)) {
    }
    indexer->End();
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
