#include "VideoStreamSupport.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace VekTest {

namespace {

std::string Capture(const std::string& command)
{
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return out;
    std::array<char, 4096> buffer;
    size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        out.append(buffer.data(), n);
    pclose(pipe);
    return out;
}

} // namespace

bool HaveEncoder(const std::string& encoder)
{
    if (std::system("ffprobe -hide_banner -version >/dev/null 2>&1") != 0)
        return false;
    const std::string encoders = Capture("ffmpeg -hide_banner -encoders 2>/dev/null");
    return encoders.find(" " + encoder + " ") != std::string::npos;
}

bool RunFfmpeg(const std::string& arguments, const std::string& path)
{
    const std::string command = "ffmpeg -hide_banner -loglevel error -y " + arguments + " '" + path + "' </dev/null";
    return std::system(command.c_str()) == 0;
}

std::string ProbeStream(const std::string& path)
{
    return Capture("ffprobe -v error -select_streams v:0 -show_streams -of json '" + path + "'");
}

std::string ProbeFrameTypes(const std::string& path)
{
    const std::string csv =
        Capture("ffprobe -v error -select_streams v:0 -show_entries frame=pict_type -of csv=p=0 '" + path + "'");
    std::string types;
    for (char c : csv)
        if (c == 'I' || c == 'P' || c == 'B')
            types += c;
    return types;
}

std::string JsonValue(const std::string& json, const std::string& key)
{
    const std::string quoted = "\"" + key + "\":";
    size_t at = json.find(quoted);
    if (at == std::string::npos)
        return "";
    at += quoted.size();
    while (at < json.size() && json[at] == ' ')
        ++at;
    if (at < json.size() && json[at] == '"') {
        const size_t end = json.find('"', at + 1);
        return json.substr(at + 1, end - at - 1);
    }
    size_t end = at;
    while (end < json.size() && json[end] != ',' && json[end] != '\n' && json[end] != '}')
        ++end;
    return json.substr(at, end - at);
}

std::vector<uint8_t> FindBox(const std::string& file, const char* type)
{
    const size_t at = file.find(type);
    if (at == std::string::npos || at < 4)
        return {};
    const auto* p = reinterpret_cast<const uint8_t*>(file.data()) + at - 4;
    const uint32_t size = uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
    if (size < 8 || size - 4 > file.size() - at)
        return {};
    return std::vector<uint8_t>(p + 8, p + size);
}

std::vector<std::vector<uint8_t>> SplitAnnexB(const std::string& bytes)
{
    std::vector<std::vector<uint8_t>> units;
    std::vector<size_t> starts;
    for (size_t i = 2; i < bytes.size(); ++i)
        if (bytes[i] == 1 && bytes[i - 1] == 0 && bytes[i - 2] == 0)
            starts.push_back(i + 1);
    for (size_t k = 0; k < starts.size(); ++k) {
        size_t end = k + 1 < starts.size() ? starts[k + 1] - 3 : bytes.size();
        // The zeros before the next prefix (the four-byte form, trailing
        // zero bytes) belong to no unit.
        while (end > starts[k] && bytes[end - 1] == 0)
            --end;
        units.emplace_back(bytes.begin() + long(starts[k]), bytes.begin() + long(end));
    }
    return units;
}

} // namespace VekTest
