#pragma once

// Independent converters as test oracles: ffmpeg's raw PCM muxers and
// codecs, and python3's audioop (the classic G.711 reference coder). Each
// returns nullopt when the program is missing or fails, so the calling test
// can skip; Windows builds (run under Wine) always skip.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace VekTest {

inline bool HasProgram(const std::string& name)
{
#if defined(_WIN32)
    (void)name;
    return false;
#else
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
#endif
}

// Runs `command` with IN and OUT replaced by scratch files, IN holding `input`.
// Callers ask HasProgram first.
inline std::optional<std::vector<uint8_t>> RunConverter(std::string command, const std::vector<uint8_t>& input)
{
    TempDir dir;
    const std::string in = dir.File("in.raw");
    const std::string out = dir.File("out.raw");
    if (!WriteFile(in, std::string(input.begin(), input.end())))
        return std::nullopt;
    for (auto [name, path] : {std::pair{std::string("IN"), in}, std::pair{std::string("OUT"), out}})
        for (size_t at = command.find(name); at != std::string::npos; at = command.find(name, at + path.size()))
            command.replace(at, name.size(), "'" + path + "'");
    if (std::system((command + " >/dev/null 2>&1").c_str()) != 0)
        return std::nullopt;
    const std::string bytes = ReadFile(out);
    return std::vector<uint8_t>(bytes.begin(), bytes.end());
}

// ffmpeg from one raw sample format to another (its names: s16le, f32le,
// alaw ...), mono, without resampling or dither.
inline std::optional<std::vector<uint8_t>> FfmpegConvert(const std::string& from, const std::string& to,
                                                         const std::vector<uint8_t>& input)
{
    if (!HasProgram("ffmpeg"))
        return std::nullopt;
    return RunConverter("ffmpeg -v error -nostdin -y -f " + from + " -ar 8000 -ac 1 -i IN -f " + to + " OUT", input);
}

// audioop.lin2alaw or lin2ulaw of 16-bit little-endian samples.
inline std::optional<std::vector<uint8_t>> AudioopEncode(const std::string& function,
                                                         const std::vector<uint8_t>& samples)
{
    if (!HasProgram("python3"))
        return std::nullopt;
    return RunConverter("python3 -W ignore -c \"import audioop,sys; d=open(sys.argv[1],'rb').read(); "
                        "open(sys.argv[2],'wb').write(audioop." +
                            function + "(d,2))\" IN OUT",
                        samples);
}

} // namespace VekTest
