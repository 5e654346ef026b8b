#include "Commands.h"

#include <cstdio>

namespace VekTool {

int RunTimecode(int, char**)
{
    std::fputs("vek timecode: not available yet\n", stderr);
    return kExitFailure;
}

} // namespace VekTool
