#pragma once

// The subcommands of the vek tool. Each takes the arguments after its name
// and returns the process exit code.
#include <vector>

namespace VekTool {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1; // the command ran but the input was bad
constexpr int kExitUsage = 2;   // the command line itself was wrong

struct Command {
    const char* name;
    int (*run)(int argc, char** argv);
};

const std::vector<Command>& Commands();

int RunTimecode(int argc, char** argv);
int RunFormats(int argc, char** argv);
int RunProbe(int argc, char** argv);
int RunSamples(int argc, char** argv);
int RunIndex(int argc, char** argv);
int RunConvert(int argc, char** argv);

} // namespace VekTool
