#pragma once

// The command line of a media command: switches, options that take a value,
// and exactly one file. Parsing prints usage and gives the exit code where
// the line is wrong or asks for help.
#include <cstdio>
#include <functional>
#include <initializer_list>

namespace VekTool {

struct Switch {
    const char* name; // "--json"
    bool* value;      // set to true when given
};

// Handles an option that takes a value: returns false (after a message)
// when the value is missing or wrong. `value` is null when none follows.
using ValueOption = std::function<bool(const char* value)>;
struct Option {
    const char* name;
    ValueOption take;
};

// -1 when the command may run with `file` set; otherwise the exit code
// (kExitOk after --help, kExitUsage for a malformed line).
int ParseFileCommandLine(const char* command, int argc, char** argv, std::initializer_list<Switch> switches,
                         std::initializer_list<Option> options, void (*printUsage)(std::FILE*), const char*& file);

} // namespace VekTool
