#include "FileCommandLine.h"

#include "Commands.h"

#include <cstring>

namespace VekTool {

namespace {

int UsageError(void (*printUsage)(std::FILE*))
{
    std::fputc('\n', stderr);
    printUsage(stderr);
    return kExitUsage;
}

} // namespace

int ParseFileCommandLine(const char* command, int argc, char** argv, std::initializer_list<Switch> switches,
                         std::initializer_list<Option> options, void (*printUsage)(std::FILE*), const char*& file)
{
    file = nullptr;
    for (int i = 0; i < argc; ++i) {
        const char* arg = argv[i];
        if (!std::strcmp(arg, "--help") || !std::strcmp(arg, "-h")) {
            printUsage(stdout);
            return kExitOk;
        }
        bool known = false;
        for (const Switch& s : switches)
            if (!std::strcmp(arg, s.name))
                known = *s.value = true;
        for (const Option& o : options) {
            if (known || std::strcmp(arg, o.name))
                continue;
            known = true;
            if (!o.take(i + 1 < argc ? argv[++i] : nullptr))
                return UsageError(printUsage);
        }
        if (known)
            continue;
        if (arg[0] == '-' && arg[1] != 0) {
            std::fprintf(stderr, "vek %s: unknown option '%s'\n", command, arg);
            return UsageError(printUsage);
        }
        if (file) {
            std::fprintf(stderr, "vek %s: give one file\n", command);
            return UsageError(printUsage);
        }
        file = arg;
    }
    if (!file) {
        printUsage(stderr);
        return kExitUsage;
    }
    return -1;
}

} // namespace VekTool
