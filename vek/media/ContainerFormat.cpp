#include <vek/media/ContainerFormat.h>

#include <vek/media/FormatTable.h>

namespace Quorvex::Vek {

namespace {

constexpr FormatDescription kNames[] = {
    {ContainerFormat::AAC, 0, "AAC Audio (ADTS)"},
    {ContainerFormat::AAF, 0, "Advanced Authoring Format (AAF)"},
    {ContainerFormat::AC3, 0, "Dolby Digital Audio (AC-3)"},
    {ContainerFormat::AIFF, 0, "Audio Interchange File Format (AIFF)"},
    {ContainerFormat::MXF_AS02, 0, "MXF AS-02"},
    {ContainerFormat::MXF_AS03, 0, "MXF AS-03"},
    {ContainerFormat::MXF_AS11, 0, "MXF AS-11"},
    {ContainerFormat::MXF_AS12, 0, "MXF AS-12"},
    {ContainerFormat::ASF, 0, "Advanced Systems Format (ASF)"},
    {ContainerFormat::MXF_OPATOM, 0, "MXF OP-Atom"},
    {ContainerFormat::AVI, 0, "Audio Video Interleave (AVI)"},
    {ContainerFormat::DFXP, 0, "Distribution Format Exchange Profile (DFXP)"},
    {ContainerFormat::DV, 0, "DV (DIF Stream)"},
    {ContainerFormat::EDL, 0, "Edit Decision List (EDL)"},
    {ContainerFormat::FLV, 0, "Flash Video (FLV)"},
    {ContainerFormat::GXF, 0, "General Exchange Format (GXF)"},
    {ContainerFormat::MPEG4_AVC, 0, "H.264/AVC Elementary Stream"},
    {ContainerFormat::MPEG_HEVC, 0, "H.265/HEVC Elementary Stream"},
    {ContainerFormat::MXF_IMF, 0, "Interoperable Master Format (IMF)"},
    {ContainerFormat::Image, 0, "Image Sequence"},
    {ContainerFormat::LXF, 0, "Leitch Exchange Format (LXF)"},
    {ContainerFormat::MPEG1_VIDEO, 0, "MPEG-1 Video Elementary Stream"},
    {ContainerFormat::MPEG2_PS, 0, "MPEG-2 Program Stream"},
    {ContainerFormat::MPEG2_TS, 0, "MPEG-2 Transport Stream"},
    {ContainerFormat::MPEG2_VIDEO, 0, "MPEG-2 Video Elementary Stream"},
    {ContainerFormat::MKV, 0, "Matroska"},
    {ContainerFormat::MOV, 0, "QuickTime Movie"},
    {ContainerFormat::MPEG4, 0, "MPEG-4 (MP4)"},
    {ContainerFormat::MPEG1, 0, "MPEG-1 System Stream"},
    {ContainerFormat::MPEG_AUDIO, 0, "MPEG Audio Elementary Stream"},
    {ContainerFormat::MXF, 0, "Material Exchange Format (MXF)"},
    {ContainerFormat::Manzanita, 0, "Manzanita MPEG-2 Transport Stream"},
    {ContainerFormat::MXF_OP1B_EXT, 0, "MXF OP1b, External Essence"},
    {ContainerFormat::MXF_OP1B_INT, 0, "MXF OP1b, Internal Essence"},
    {ContainerFormat::MXF_OP1A, 0, "MXF OP1a"},
    {ContainerFormat::MXF_OPPD, 0, "MXF OP-PD"},
    {ContainerFormat::Petasite, 0, "Petasite"},
    {ContainerFormat::DirectShow, 0, "DirectShow"},
    {ContainerFormat::MXF_RD25, 0, "MXF RDD 25"},
    {ContainerFormat::SCC, 0, "Scenarist Closed Captions (SCC)"},
    {ContainerFormat::Simplistic, 0, "Simplistic MPEG-2 Transport Stream"},
    {ContainerFormat::STL, 0, "EBU Subtitling Data Exchange (STL)"},
    {ContainerFormat::ZIFO, 0, "ZIFO"},
    {ContainerFormat::TTML, 0, "Timed Text Markup Language (TTML)"},
    {ContainerFormat::Video, 0, "Video Frames"},
    {ContainerFormat::VTT, 0, "WebVTT"},
    {ContainerFormat::WAV, 0, "Waveform Audio (WAV)"},
    {ContainerFormat::WMA, 0, "Windows Media Audio"},
    {ContainerFormat::WMV, 0, "Windows Media Video"},
    {ContainerFormat::WAV64, 0, "Sony Wave64"},
    {ContainerFormat::Y4M, 0, "YUV4MPEG2"},
    {ContainerFormat::YUV, 0, "Raw YUV Video"},
    {0, 0, nullptr},
};

static_assert(IsIndexableFormatTable(kNames));
static_assert(CountFormatRows(kNames) == CountFormatRoots(kNames));

constexpr auto kIndex = BuildFormatIndex(kNames);
constexpr FormatTable kTable(kNames, kIndex.data(), kIndex.size());

constexpr FormatConstant kConstants[] = {
    {"AAC", ContainerFormat::AAC},
    {"AAF", ContainerFormat::AAF},
    {"AC3", ContainerFormat::AC3},
    {"AIFF", ContainerFormat::AIFF},
    {"MXF_AS02", ContainerFormat::MXF_AS02},
    {"MXF_AS03", ContainerFormat::MXF_AS03},
    {"MXF_AS11", ContainerFormat::MXF_AS11},
    {"MXF_AS12", ContainerFormat::MXF_AS12},
    {"ASF", ContainerFormat::ASF},
    {"MXF_OPATOM", ContainerFormat::MXF_OPATOM},
    {"AVI", ContainerFormat::AVI},
    {"DFXP", ContainerFormat::DFXP},
    {"DV", ContainerFormat::DV},
    {"EDL", ContainerFormat::EDL},
    {"FLV", ContainerFormat::FLV},
    {"GXF", ContainerFormat::GXF},
    {"MPEG4_AVC", ContainerFormat::MPEG4_AVC},
    {"MPEG_HEVC", ContainerFormat::MPEG_HEVC},
    {"MXF_IMF", ContainerFormat::MXF_IMF},
    {"Image", ContainerFormat::Image},
    {"LXF", ContainerFormat::LXF},
    {"MPEG1_VIDEO", ContainerFormat::MPEG1_VIDEO},
    {"MPEG2_PS", ContainerFormat::MPEG2_PS},
    {"MPEG2_TS", ContainerFormat::MPEG2_TS},
    {"MPEG2_VIDEO", ContainerFormat::MPEG2_VIDEO},
    {"MKV", ContainerFormat::MKV},
    {"MOV", ContainerFormat::MOV},
    {"MPEG4", ContainerFormat::MPEG4},
    {"MPEG1", ContainerFormat::MPEG1},
    {"MPEG_AUDIO", ContainerFormat::MPEG_AUDIO},
    {"MXF", ContainerFormat::MXF},
    {"Manzanita", ContainerFormat::Manzanita},
    {"MXF_OP1B_EXT", ContainerFormat::MXF_OP1B_EXT},
    {"MXF_OP1B_INT", ContainerFormat::MXF_OP1B_INT},
    {"MXF_OP1A", ContainerFormat::MXF_OP1A},
    {"MXF_OPPD", ContainerFormat::MXF_OPPD},
    {"Petasite", ContainerFormat::Petasite},
    {"DirectShow", ContainerFormat::DirectShow},
    {"MXF_RD25", ContainerFormat::MXF_RD25},
    {"SCC", ContainerFormat::SCC},
    {"Simplistic", ContainerFormat::Simplistic},
    {"STL", ContainerFormat::STL},
    {"ZIFO", ContainerFormat::ZIFO},
    {"TTML", ContainerFormat::TTML},
    {"Video", ContainerFormat::Video},
    {"VTT", ContainerFormat::VTT},
    {"WAV", ContainerFormat::WAV},
    {"WMA", ContainerFormat::WMA},
    {"WMV", ContainerFormat::WMV},
    {"WAV64", ContainerFormat::WAV64},
    {"Y4M", ContainerFormat::Y4M},
    {"YUV", ContainerFormat::YUV},
};

} // namespace

const char* ContainerFormat::GetName(unsigned int format)
{
    return kTable.Name(format);
}

const FormatDescription* ContainerFormat::GetDescriptions()
{
    return kNames;
}

const FormatConstant* ContainerFormat::GetConstants()
{
    return kConstants;
}

size_t ContainerFormat::GetConstantCount()
{
    return std::size(kConstants);
}

} // namespace Quorvex::Vek
