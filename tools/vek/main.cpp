// vek: the command-line front end of the library.
#include "Commands.h"

#include <cstdio>
#include <cstring>

namespace {

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek <command> [arguments]\n"
               "\n"
               "commands:\n"
               "  probe      what a media file holds: format, tracks, properties (vek probe --help)\n"
               "  samples    list the samples of a media file (vek samples --help)\n"
               "  index      index a media file on a background thread (vek index --help)\n"
               "  convert    convert an audio track to raw PCM of another layout (vek convert --help)\n"
               "  timecode   convert and compute with SMPTE timecodes (vek timecode --help)\n"
               "  formats    list the media format codes (vek formats --help)\n"
               "\n"
               "vek --help shows this text.\n",
               out);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        PrintUsage(stderr);
        return VekTool::kExitUsage;
    }
    const char* command = argv[1];
    if (!std::strcmp(command, "--help") || !std::strcmp(command, "-h") || !std::strcmp(command, "help")) {
        PrintUsage(stdout);
        return 0;
    }
    for (const VekTool::Command& c : VekTool::Commands())
        if (!std::strcmp(command, c.name))
            return c.run(argc - 2, argv + 2);
    std::fprintf(stderr, "vek: unknown command '%s'\n\n", command);
    PrintUsage(stderr);
    return VekTool::kExitUsage;
}
