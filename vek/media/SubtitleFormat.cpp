#include <vek/media/SubtitleFormat.h>

#include <vek/media/FormatTable.h>

namespace Quorvex::Vek {

namespace {

constexpr FormatDescription kDescriptions[] = {
    {Four("bmap"), 0, "Bitmap Subtitles"},
    {Four("c608"), 0, "CEA-608 Closed Captions"},
    {Four("c618"), Four("c608"), "CEA-608 Closed Captions, Field 1"},
    {Four("c628"), Four("c608"), "CEA-608 Closed Captions, Field 2"},
    {Four("c708"), 0, "CEA-708 Closed Captions"},
    {Four("dvbs"), 0, "DVB Subtitles"},
    {Four("png "), 0, "PNG Subtitle Images"},
    {Four("scc "), 0, "Scenarist Closed Captions"},
    {Four("ttml"), 0, "Timed Text Markup Language (TTML)"},
    {Four("stpp"), Four("ttml"), nullptr},
    {Four("dfxp"), Four("ttml"), "Distribution Format Exchange Profile (DFXP)"},
    {Four("vtt "), 0, "WebVTT"},
    {Four("wvtt"), Four("vtt "), nullptr},
    {Four("tx3g"), 0, "3GPP Timed Text"},
    {Four("text"), 0, "QuickTime Text"},
    {0, 0, nullptr},
};

static_assert(IsIndexableFormatTable(kDescriptions));

constexpr auto kIndex = BuildFormatIndex(kDescriptions);
constexpr FormatTable kTable(kDescriptions, kIndex.data(), kIndex.size());

constexpr uint32_t kEquivalents[][2] = {
    {SubtitleFormat::DFXP, SubtitleFormat::TTML},
    {0, 0},
};

constexpr FormatConstant kConstants[] = {
    {"Unknown", SubtitleFormat::Unknown},
    {"BMAP", SubtitleFormat::BMAP},
    {"C608", SubtitleFormat::C608},
    {"C618", SubtitleFormat::C618},
    {"C628", SubtitleFormat::C628},
    {"C708", SubtitleFormat::C708},
    {"DFXP", SubtitleFormat::DFXP},
    {"DVB", SubtitleFormat::DVB},
    {"PNG", SubtitleFormat::PNG},
    {"SCC", SubtitleFormat::SCC},
    {"TTML", SubtitleFormat::TTML},
    {"VTT", SubtitleFormat::VTT},
};

} // namespace

const char* SubtitleFormat::GetName(unsigned int format)
{
    return kTable.Name(format);
}

unsigned int SubtitleFormat::GetCanonicalFormat(unsigned int format)
{
    return kTable.Canonical(format);
}

unsigned int SubtitleFormat::GetEquivalentFormat(unsigned int format)
{
    if (uint32_t paired = FindPairedFormat(kEquivalents, format))
        return paired;
    return kTable.Alias(format);
}

const FormatDescription* SubtitleFormat::GetDescriptions()
{
    return kDescriptions;
}

const FormatConstant* SubtitleFormat::GetConstants()
{
    return kConstants;
}

size_t SubtitleFormat::GetConstantCount()
{
    return std::size(kConstants);
}

} // namespace Quorvex::Vek
