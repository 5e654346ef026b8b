#include "Commands.h"

#include <cstdio>

namespace VekTool {

int RunFormats(int, char**)
{
    std::fputs("vek formats: not available yet\n", stderr);
    return kExitFailure;
}

} // namespace VekTool
