#pragma once

// How the tool writes media facts as text: four-character codes, format
// names, clock times, speaker positions, loudness values and the container's
// own facts.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Quorvex::Vek {
class CAudioProperties;
class CContainer;
class IProperties;
} // namespace Quorvex::Vek

namespace VekTool {

bool IsPrintable(uint32_t code);
// The four characters of a printable code, or "0x%08X".
std::string CodeText(uint32_t code);
// The audio format's display name, or its code when it has none.
std::string FormatName(uint32_t audioFormat);
// "H:MM:SS.mmm".
std::string ClockText(double seconds);
// A speaker position's short name ("FL", "LFE" ...), or "?" for unknown.
std::string PositionName(uint32_t position);
// "(FL FR FC ...)".
std::string PositionsText(const std::vector<uint32_t>& positions);
// The broadcast-wave loudness facts a track carries, in LUFS/LU/dBTP
// (stored as hundredths), by key.
std::vector<std::pair<std::string, double>> LoudnessValues(Quorvex::Vek::CAudioProperties* properties);
// Every fact in the container's bag as text, in the order stored: through
// the container's accessor where it has one, else printable text as it is
// and anything else as hex.
std::vector<std::pair<std::string, std::string>> ContainerTags(Quorvex::Vek::CContainer* container);
// The same for a track's description, where small binary values are
// numbers (little-endian) and zero-terminated texts lose their terminator.
std::vector<std::pair<std::string, std::string>> MediaTags(Quorvex::Vek::IProperties* properties);
// The video format's display name, or its code when it has none.
std::string VideoFormatName(uint32_t videoFormat);
// The subtitle format's display name, or its code when it has none.
std::string SubtitleFormatName(uint32_t subtitleFormat);

} // namespace VekTool
