#pragma once

// Streams written at test time by ffmpeg's encoders, and ffprobe's view of
// them as the oracle. Every helper returns nothing (empty or nullopt) when
// a program is missing or fails, so a test can skip; Windows builds (run
// under Wine) always skip.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace VekTest {

inline bool HasFfmpeg()
{
#if defined(_WIN32)
    return false;
#else
    return std::system("ffmpeg -hide_banner -version >/dev/null 2>&1") == 0 &&
           std::system("ffprobe -hide_banner -version >/dev/null 2>&1") == 0;
#endif
}

inline bool HasEncoder(const std::string& name)
{
#if defined(_WIN32)
    (void)name;
    return false;
#else
    const std::string command = "ffmpeg -hide_banner -encoders 2>/dev/null | grep -q ' " + name + " '";
    return std::system(command.c_str()) == 0;
#endif
}

// Standard output of a shell command; nullopt when it fails.
inline std::optional<std::string> RunCommand(const std::string& command)
{
#if defined(_WIN32)
    (void)command;
    return std::nullopt;
#else
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return std::nullopt;
    std::string out;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        out.append(buffer, n);
    if (pclose(pipe) != 0)
        return std::nullopt;
    return out;
#endif
}

// Encodes a lavfi source (`input`, e.g. "sine=d=1") with `options` into
// `dir`/`name`; the file's bytes, or empty when ffmpeg fails.
inline std::string Encode(const TempDir& dir, const std::string& input, const std::string& options,
                          const std::string& name)
{
    const std::string path = dir.File(name);
    const std::string command = "ffmpeg -v error -nostdin -y -f lavfi -i '" + input + "' " + options + " '" + path +
                                "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return {};
    return ReadFile(path);
}

// ffprobe's JSON for a file, with `sections` such as "-show_streams".
inline std::string Probe(const std::string& path, const std::string& sections)
{
    return RunCommand("ffprobe -v error " + sections + " -of json '" + path + "'").value_or("");
}

// Every value of "key" in a JSON text, in order, quotes removed.
inline std::vector<std::string> JsonValues(const std::string& json, const std::string& key)
{
    std::vector<std::string> values;
    const std::string pattern = "\"" + key + "\":";
    for (size_t at = json.find(pattern); at != std::string::npos; at = json.find(pattern, at + 1)) {
        size_t begin = json.find_first_not_of(' ', at + pattern.size());
        if (begin == std::string::npos)
            break;
        size_t end;
        if (json[begin] == '"') {
            end = json.find('"', ++begin);
        } else {
            end = json.find_first_of(",\n}", begin);
        }
        if (end == std::string::npos)
            break;
        values.push_back(json.substr(begin, end - begin));
    }
    return values;
}

inline std::string JsonValue(const std::string& json, const std::string& key)
{
    const std::vector<std::string> values = JsonValues(json, key);
    return values.empty() ? std::string() : values.front();
}

inline const uint8_t* DataOf(const std::string& s)
{
    return reinterpret_cast<const uint8_t*>(s.data());
}

// A rational "n:d" or "n/d" as a double; 0 when it is not one.
inline double Ratio(const std::string& text)
{
    const size_t separator = text.find_first_of(":/");
    if (separator == std::string::npos)
        return 0;
    const double denominator = std::atof(text.c_str() + separator + 1);
    return denominator == 0 ? 0 : std::atof(text.c_str()) / denominator;
}

// The payload of the first box named `type` in an MP4 file's bytes.
inline std::string BoxPayload(const std::string& file, const char* type)
{
    const size_t at = file.find(type);
    if (at == std::string::npos || at < 4)
        return {};
    const uint8_t* p = DataOf(file) + at - 4;
    const uint32_t size = uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
    if (size < 8 || size - 8 > file.size() - at - 4)
        return {};
    return file.substr(at + 4, size - 8);
}

// WAVE channel masks of the ffmpeg layout names the tests meet.
inline uint32_t FfmpegLayoutMask(const std::string& name)
{
    struct Layout {
        const char* name;
        uint32_t mask;
    };
    // FL 1, FR 2, FC 4, LFE 8, BL 0x10, BR 0x20, FLC 0x40, FRC 0x80, BC 0x100,
    // SL 0x200, SR 0x400, TFL 0x1000, TFR 0x4000.
    static const Layout layouts[] = {
        {"mono", 0x4},         {"stereo", 0x3},       {"2.1", 0xB},          {"3.0", 0x7},
        {"3.0(back)", 0x103},  {"4.0", 0x107},        {"quad", 0x33},        {"quad(side)", 0x603},
        {"5.0", 0x37},         {"5.0(side)", 0x607},  {"5.1", 0x3F},         {"5.1(side)", 0x60F},
        {"6.1(back)", 0x13F},  {"7.1", 0x63F},        {"7.1(wide)", 0xFF},   {"7.1(wide-side)", 0x6CF},
        {"3.1", 0xF},          {"4.1", 0x10F},        {"2.2", 0x603},        {"2.1(back)", 0x10B},
    };
    for (const Layout& layout : layouts)
        if (name == layout.name)
            return layout.mask;
    return 0xFFFFFFFFu;
}

} // namespace VekTest
