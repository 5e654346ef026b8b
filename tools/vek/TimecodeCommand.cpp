#include "Commands.h"
#include "TimecodeCli.h"

#include <cstdio>
#include <string>
#include <vector>

namespace VekTool {

int RunTimecode(int argc, char** argv)
{
    const std::vector<std::string> args(argv, argv + argc);
    const TimecodeCli::Outcome outcome = TimecodeCli::Run(args);
    std::fputs(outcome.out.c_str(), stdout);
    std::fputs(outcome.err.c_str(), stderr);
    return outcome.exitCode;
}

} // namespace VekTool
