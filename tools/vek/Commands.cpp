#include "Commands.h"

namespace VekTool {

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = {
        {"timecode", RunTimecode},
        {"formats", RunFormats},
        {"probe", RunProbe},
        {"samples", RunSamples},
        {"index", RunIndex},
        {"convert", RunConvert},
    };
    return commands;
}

} // namespace VekTool
