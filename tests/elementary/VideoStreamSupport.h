#pragma once

// Streams made at test time by ffmpeg (libx264, libx265) and the facts
// ffprobe reads from them: the independent side of the video parser tests.
#include <cstdint>
#include <string>
#include <vector>

namespace VekTest {

// True when ffmpeg can encode with `encoder` and ffprobe runs.
bool HaveEncoder(const std::string& encoder);

// Runs ffmpeg with `arguments` (input and encoder options) writing `path`;
// false when it fails.
bool RunFfmpeg(const std::string& arguments, const std::string& path);

// ffprobe's JSON description of the first video stream of `path`.
std::string ProbeStream(const std::string& path);
// The picture types (I, P, B) of every frame of `path`, in output order.
std::string ProbeFrameTypes(const std::string& path);

// The value of "key" in a flat JSON object: text without quotes, "" when absent.
std::string JsonValue(const std::string& json, const std::string& key);

// The payload of the first box of type `type` (four characters) in an MP4
// file, found by searching for its type code; empty when absent or cut.
std::vector<uint8_t> FindBox(const std::string& file, const char* type);

// The NAL units of an Annex B stream (prefixes removed), found the simple
// way, byte by byte, independent of the library's scanner.
std::vector<std::vector<uint8_t>> SplitAnnexB(const std::string& bytes);

} // namespace VekTest
