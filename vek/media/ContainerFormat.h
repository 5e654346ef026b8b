#pragma once

// Identifiers of the container formats that readers and writers handle,
// with a display name for each.
#include <cstddef>

#include <vek/media/FormatDescription.h>

namespace Quorvex::Vek {

class VEK_API ContainerFormat {
public:
    static constexpr uint32_t AAC = Four("aac ");
    static constexpr uint32_t AAF = Four("aaf ");
    static constexpr uint32_t AC3 = Four("ac3 ");
    static constexpr uint32_t AIFF = Four("aiff");
    static constexpr uint32_t MXF_AS02 = Four("as02");
    static constexpr uint32_t MXF_AS03 = Four("as03");
    static constexpr uint32_t MXF_AS11 = Four("as11");
    static constexpr uint32_t MXF_AS12 = Four("as12");
    static constexpr uint32_t ASF = Four("asf ");
    static constexpr uint32_t MXF_OPATOM = Four("atom");
    static constexpr uint32_t AVI = Four("avi ");
    static constexpr uint32_t DFXP = Four("dfxp");
    static constexpr uint32_t DV = Four("dif ");
    static constexpr uint32_t EDL = Four("edl ");
    static constexpr uint32_t FLV = Four("flv ");
    static constexpr uint32_t GXF = Four("gxf ");
    static constexpr uint32_t MPEG4_AVC = Four("h264");
    static constexpr uint32_t MPEG_HEVC = Four("hevc");
    static constexpr uint32_t MXF_IMF = Four("imf ");
    static constexpr uint32_t Image = Four("img ");
    static constexpr uint32_t LXF = Four("lxf ");
    static constexpr uint32_t MPEG1_VIDEO = Four("m1v ");
    static constexpr uint32_t MPEG2_PS = Four("m2ps");
    static constexpr uint32_t MPEG2_TS = Four("m2ts");
    static constexpr uint32_t MPEG2_VIDEO = Four("m2v ");
    static constexpr uint32_t MKV = Four("mkv ");
    static constexpr uint32_t MOV = Four("mov ");
    static constexpr uint32_t MPEG4 = Four("mp4 ");
    static constexpr uint32_t MPEG1 = Four("mpg ");
    static constexpr uint32_t MPEG_AUDIO = Four("mpga");
    static constexpr uint32_t MXF = Four("mxf ");
    static constexpr uint32_t Manzanita = Four("mzts");
    static constexpr uint32_t MXF_OP1B_EXT = Four("oe1b");
    static constexpr uint32_t MXF_OP1B_INT = Four("oi1b");
    static constexpr uint32_t MXF_OP1A = Four("op1a");
    static constexpr uint32_t MXF_OPPD = Four("oppd");
    static constexpr uint32_t Petasite = Four("peta");
    static constexpr uint32_t DirectShow = Four("qrtz");
    static constexpr uint32_t MXF_RD25 = Four("rd25");
    static constexpr uint32_t SCC = Four("scc ");
    static constexpr uint32_t Simplistic = Four("smts");
    static constexpr uint32_t STL = Four("stl ");
    static constexpr uint32_t ZIFO = Four("zifo");
    static constexpr uint32_t TTML = Four("ttml");
    static constexpr uint32_t Video = Four("vide");
    static constexpr uint32_t VTT = Four("vtt ");
    static constexpr uint32_t WAV = Four("wav ");
    static constexpr uint32_t WMA = Four("wma ");
    static constexpr uint32_t WMV = Four("wmv ");
    static constexpr uint32_t WAV64 = Four("wv64");
    static constexpr uint32_t Y4M = Four("y4m ");
    static constexpr uint32_t YUV = Four("yuv ");

    // The display name, or null for a code that names no container.
    static const char* GetName(unsigned int format);

    // The name table (every entry a root), ended by an entry whose code is 0.
    static const FormatDescription* GetDescriptions();

    // Every constant above as (name, code); GetConstantCount() of them.
    static const FormatConstant* GetConstants();
    static size_t GetConstantCount();
};

} // namespace Quorvex::Vek
