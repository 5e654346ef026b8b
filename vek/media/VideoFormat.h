#pragma once

// Identifiers of video codings and uncompressed pixel layouts: the exported
// VideoFormat constants and the video format description table, which gives
// every known code a display name and a parent.
//
// How the table is arranged:
//
// - Pure aliases (other spellings and sample-entry names of one bitstream,
//   such as 'h264' for 'avc1' or 'YUY2' for 'YUYV') have no name of their
//   own and sit under the code they alias.
// - Variants of one coding sit under their family code: ProRes under 'ap  '
//   (the 422 flavours under 'apc '), DNxHD and DNxHR under 'AVdn', the DV
//   tape formats under 'dv  ' (DVCPRO 25/50/100/HD under 'dvp ', 'dv50',
//   'dv1 ', 'dvh1'), AVC-Intra under 'AVCI' (per bit rate under 'ai1 ' and
//   'ai5 '), and the MPEG-2 based camera formats under 'hdv ', 'xd  ' and
//   'mx  '; Photo JPEG and the Motion JPEG dialects under 'mjpg' (but not
//   Format B, which is no JPEG stream). IsFormat(f, VideoFormat::ProRes)
//   thus asks "any ProRes?".
// - Every uncompressed Y'CbCr layout is under 'YUV ', every RGB layout
//   under 'RGB ', luma-only layouts under 'GREY'. The canonical format of
//   a pixel layout is therefore its colour model; the layout itself is the
//   exact code.
//
// Three ways to relate two codes, from narrow to broad:
//
// - Equivalent: another code for the same bitstream. An unnamed entry gives
//   its parent ('h264' -> 'avc1'), a named entry its first unnamed child
//   ('avc1' -> 'h264', 'YUYV' -> 'YUY2'); otherwise 0.
// - Canonical: the root of the parent chain, as described above.
// - Categorical: the wider coding a decoder must understand. It is the
//   canonical root except where a root of its own carries a wider coding: AVC-Intra is H.264 ('avc1'); HDV, XDCAM, IMX and MPEG-1 are read
//   by MPEG-2 decoders ('mp2v'); luma-only layouts are YUV without chroma
//   ('YUV '); Windows Media Video 9 is VC-1 Simple and Main profile
//   ('WVC1'); Sorenson Spark is a dialect of H.263 ('h263'). An unknown code
//   gives 0.
#include <cstddef>

#include <vek/media/FormatDescription.h>

namespace Quorvex::Vek {

class VEK_API VideoFormat {
public:
    static constexpr uint32_t Unknown = 0x00000000;
    static constexpr uint32_t PackedRGB = 0x00000018;
    static constexpr uint32_t PackedARGB = 0x00000020;
    static constexpr uint32_t PhotoshopDocument = Four(".psd");
    static constexpr uint32_t Targa = Four(".tga");
    static constexpr uint32_t PackedBGR = Four("24BG");
    static constexpr uint32_t PackedBGR_R = Four("24BR");
    static constexpr uint32_t PackedRGB_R = Four("24RR");
    static constexpr uint32_t PackedBGRA_R = Four("32BR");
    static constexpr uint32_t PackedRGBA_R = Four("32RR");
    static constexpr uint32_t FourXTechnologies = Four("4XMV");
    static constexpr uint32_t PlanarRGB = Four("8BPS");
    static constexpr uint32_t PackedBGRA_64 = Four("A46L");
    static constexpr uint32_t AutoDeskRLE = Four("AASC");
    static constexpr uint32_t Kensington = Four("ABYR");
    static constexpr uint32_t AutoDeskFLC = Four("AFLC");
    static constexpr uint32_t AutoDeskFLI = Four("AFLI");
    static constexpr uint32_t IntelRDX = Four("ANIM");
    static constexpr uint32_t Asus1 = Four("ASV1");
    static constexpr uint32_t Asus2 = Four("ASV2");
    static constexpr uint32_t PackedRGBA_16 = Four("AV16");
    static constexpr uint32_t AVCIntra = Four("AVCI");
    static constexpr uint32_t AvidMeridien = Four("AVDJ");
    static constexpr uint32_t AvidMJPEG = Four("AVRn");
    static constexpr uint32_t AvidDV100 = Four("AVd1");
    static constexpr uint32_t DNxHD = Four("AVdn");
    static constexpr uint32_t AvidDV = Four("AVdv");
    static constexpr uint32_t AvidAVCI = Four("AVin");
    static constexpr uint32_t AvidIMX = Four("AVmp");
    static constexpr uint32_t AvidXAVC = Four("AVxa");
    static constexpr uint32_t PackedBGRA = Four("BGRA");
    static constexpr uint32_t Bink = Four("BINK");
    static constexpr uint32_t BlizzardMPEG4 = Four("BLZ0");
    static constexpr uint32_t ChinaAVS = Four("CAVS");
    static constexpr uint32_t KaraokeCDG = Four("CDG ");
    static constexpr uint32_t CineForm = Four("CFHD");
    static constexpr uint32_t AccuPak = Four("CLJR");
    static constexpr uint32_t CamStudioScreen = Four("CSCD");
    static constexpr uint32_t Cinepak = Four("CVID");
    static constexpr uint32_t Packed422UYVY_R = Four("CYUV");
    static constexpr uint32_t DPX = Four("DPX ");
    static constexpr uint32_t TrueMotion1 = Four("DUCK");
    static constexpr uint32_t DivxMPEG4 = Four("DX50");
    static constexpr uint32_t FFmpeg = Four("FFV1");
    static constexpr uint32_t AutoDeskFLIC = Four("FLIC");
    static constexpr uint32_t FlashH263 = Four("FLV1");
    static constexpr uint32_t FlashVP6 = Four("FLV4");
    static constexpr uint32_t FRAPS = Four("FPS1");
    static constexpr uint32_t DarimVision = Four("FRWU");
    static constexpr uint32_t FlashScreen = Four("FSV1");
    static constexpr uint32_t Grayscale = Four("GREY");
    static constexpr uint32_t HuffYUV = Four("HFYU");
    static constexpr uint32_t Planar420YUV_9B = Four("I09B");
    static constexpr uint32_t Planar420YUV_9L = Four("I09L");
    static constexpr uint32_t Planar420YUV_10B = Four("I0AB");
    static constexpr uint32_t Planar420YUV_10L = Four("I0AL");
    static constexpr uint32_t Planar422YUV_9B = Four("I29B");
    static constexpr uint32_t Planar422YUV_9L = Four("I29L");
    static constexpr uint32_t Planar422YUV_10B = Four("I2AB");
    static constexpr uint32_t Planar422YUV_10L = Four("I2AL");
    static constexpr uint32_t Planar420YUVA = Four("I40A");
    static constexpr uint32_t Planar410YUV = Four("I410");
    static constexpr uint32_t Planar411YUV = Four("I411");
    static constexpr uint32_t Planar420YUV = Four("I420");
    static constexpr uint32_t Planar422YUV = Four("I422");
    static constexpr uint32_t Planar422YUVA = Four("I42A");
    static constexpr uint32_t Planar440YUV = Four("I440");
    static constexpr uint32_t Planar444YUV = Four("I444");
    static constexpr uint32_t Planar444YUV_9B = Four("I49B");
    static constexpr uint32_t Planar444YUV_9L = Four("I49L");
    static constexpr uint32_t Planar444YUV_10B = Four("I4AB");
    static constexpr uint32_t Planar444YUV_10L = Four("I4AL");
    static constexpr uint32_t IdQuake2CIN = Four("IDCI");
    static constexpr uint32_t Indeo2 = Four("IV20");
    static constexpr uint32_t Indeo3 = Four("IV31");
    static constexpr uint32_t Indeo5 = Four("IV50");
    static constexpr uint32_t Planar420YUV_FS = Four("J420");
    static constexpr uint32_t Planar422YUV_FS = Four("J422");
    static constexpr uint32_t Planar440YUV_FS = Four("J440");
    static constexpr uint32_t Planar444YUV_FS = Four("J444");
    static constexpr uint32_t KarlMortonsWorms = Four("KMVC");
    static constexpr uint32_t PackedARGB_64 = Four("L64A");
    static constexpr uint32_t LOCO = Four("LOCO");
    static constexpr uint32_t SonyPlaystation = Four("MDEC");
    static constexpr uint32_t LogicMimic = Four("ML20");
    static constexpr uint32_t MicrosoftVideo = Four("MSVC");
    static constexpr uint32_t MPEG4V1 = Four("Mp41");
    static constexpr uint32_t MPEG4V2 = Four("Mp42");
    static constexpr uint32_t MPEG4V3 = Four("Mp43");
    static constexpr uint32_t MPEG4S = Four("Mp4S");
    static constexpr uint32_t Nuppel = Four("NUV1");
    static constexpr uint32_t Biplanar420YUV = Four("NV12");
    static constexpr uint32_t Biplanar422YUV = Four("NV16");
    static constexpr uint32_t Biplanar420YVU = Four("NV21");
    static constexpr uint32_t Biplanar422YVU = Four("NV61");
    static constexpr uint32_t TrueMotion2 = Four("PVEZ");
    static constexpr uint32_t QPEG = Four("QPEG");
    static constexpr uint32_t RGB = Four("RGB ");
    static constexpr uint32_t PackedRGB_8 = Four("RGB2");
    static constexpr uint32_t PackedRGBA = Four("RGBA");
    static constexpr uint32_t Palettized444RGB = Four("RGBP");
    static constexpr uint32_t Real1 = Four("RV10");
    static constexpr uint32_t PackedRGB_12 = Four("RV12");
    static constexpr uint32_t PackedRGB_15 = Four("RV15");
    static constexpr uint32_t PackedRGB_16 = Four("RV16");
    static constexpr uint32_t Real2 = Four("RV20");
    static constexpr uint32_t PackedRGB_24 = Four("RV24");
    static constexpr uint32_t Real3 = Four("RV30");
    static constexpr uint32_t PackedRGB_32 = Four("RV32");
    static constexpr uint32_t Real4 = Four("RV40");
    static constexpr uint32_t IdRoQ = Four("RoQv");
    static constexpr uint32_t Smacker = Four("SMK2");
    static constexpr uint32_t FFmpegSnow = Four("SNOW");
    static constexpr uint32_t Sorenson1 = Four("SVQ1");
    static constexpr uint32_t Sorenson3 = Four("SVQ3");
    static constexpr uint32_t TechSmithCamtasia = Four("TSCC");
    static constexpr uint32_t Packed44UV_8 = Four("U1V1");
    static constexpr uint32_t Packed44UV_16 = Four("U2V2");
    static constexpr uint32_t IBMUltimotion = Four("ULTI");
    static constexpr uint32_t Planar44UV_16 = Four("UV16");
    static constexpr uint32_t Planar44UV_8 = Four("UV8 ");
    static constexpr uint32_t Packed422UYVY = Four("UYVY");
    static constexpr uint32_t ATI_VCR1 = Four("VCR1");
    static constexpr uint32_t ATI_VCR2 = Four("VCR2");
    static constexpr uint32_t DarimVideoTizerYUV = Four("VDTZ");
    static constexpr uint32_t MiroVideoXL = Four("VIXL");
    static constexpr uint32_t SierraVMD = Four("VMDV");
    static constexpr uint32_t VMware = Four("VMnc");
    static constexpr uint32_t VP3 = Four("VP3 ");
    static constexpr uint32_t VP5 = Four("VP5 ");
    static constexpr uint32_t VP6 = Four("VP60");
    static constexpr uint32_t VP6A = Four("VP6A");
    static constexpr uint32_t VP8 = Four("VP80");
    static constexpr uint32_t VP9 = Four("VP90");
    static constexpr uint32_t Packed422VYUY = Four("VYUY");
    static constexpr uint32_t WMV1 = Four("WMV1");
    static constexpr uint32_t WMV2 = Four("WMV2");
    static constexpr uint32_t WMV3 = Four("WMV3");
    static constexpr uint32_t WMVA = Four("WMVA");
    static constexpr uint32_t WMVP = Four("WMVP");
    static constexpr uint32_t Winnov = Four("WNV1");
    static constexpr uint32_t MicrosoftRLE = Four("WRLE");
    static constexpr uint32_t VC1 = Four("WVC1");
    static constexpr uint32_t WMVPV2 = Four("WVP2");
    static constexpr uint32_t Y_16 = Four("Y16 ");
    static constexpr uint32_t Packed211YUYV = Four("Y211");
    static constexpr uint32_t Packed411UYYVYY = Four("Y411");
    static constexpr uint32_t Planar411YVU = Four("Y41B");
    static constexpr uint32_t Y_8 = Four("Y800");
    static constexpr uint32_t YUV = Four("YUV ");
    static constexpr uint32_t Planar444YUVA = Four("YUVA");
    static constexpr uint32_t Palettized444YUV = Four("YUVP");
    static constexpr uint32_t Packed422YUYV = Four("YUYV");
    static constexpr uint32_t Planar420YVU = Four("YV12");
    static constexpr uint32_t Planar422YVU = Four("YV16");
    static constexpr uint32_t Planar444YVU = Four("YV24");
    static constexpr uint32_t Planar410YVU = Four("YVU9");
    static constexpr uint32_t Packed422YVYU = Four("YVYU");
    static constexpr uint32_t DosBoxCapture = Four("ZMBV");
    static constexpr uint32_t AVCIntra100 = Four("ai1 ");
    static constexpr uint32_t AVCIntra100_1080p25 = Four("ai12");
    static constexpr uint32_t AVCIntra100_1080p30 = Four("ai13");
    static constexpr uint32_t AVCIntra100_1080i50 = Four("ai15");
    static constexpr uint32_t AVCIntra100_1080i60 = Four("ai16");
    static constexpr uint32_t AVCIntra100_720p60 = Four("ai1p");
    static constexpr uint32_t AVCIntra100_720p50 = Four("ai1q");
    static constexpr uint32_t AVCIntra50 = Four("ai5 ");
    static constexpr uint32_t AVCIntra50_1080p25 = Four("ai52");
    static constexpr uint32_t AVCIntra50_1080p30 = Four("ai53");
    static constexpr uint32_t AVCIntra50_1080i50 = Four("ai55");
    static constexpr uint32_t AVCIntra50_1080i60 = Four("ai56");
    static constexpr uint32_t AVCIntra50_720p60 = Four("ai5p");
    static constexpr uint32_t AVCIntra50_720p50 = Four("ai5q");
    static constexpr uint32_t AVCIntraVBR = Four("aivx");
    static constexpr uint32_t ProRes = Four("ap  ");
    static constexpr uint32_t ProRes4444 = Four("ap4h");
    static constexpr uint32_t ProRes4444_XQ = Four("ap4x");
    static constexpr uint32_t ProRes422 = Four("apc ");
    static constexpr uint32_t ProRes422_HQ = Four("apch");
    static constexpr uint32_t ProRes422_SQ = Four("apcn");
    static constexpr uint32_t ProRes422_Proxy = Four("apco");
    static constexpr uint32_t ProRes422_LT = Four("apcs");
    static constexpr uint32_t AVC = Four("avc1");
    static constexpr uint32_t PackedRGB_48B = Four("b48r");
    static constexpr uint32_t PackedARGB_64B = Four("b64a");
    static constexpr uint32_t MJPEG_OpenDML = Four("dmb1");
    static constexpr uint32_t DNxHD_10HQ = Four("dn10");
    static constexpr uint32_t DNxHD_10XQ = Four("dn1x");
    static constexpr uint32_t DNxHD_444 = Four("dn44");
    static constexpr uint32_t DNxHD_8S1 = Four("dn81");
    static constexpr uint32_t DNxHD_8HQ = Four("dn8h");
    static constexpr uint32_t DNxHD_8LQ = Four("dn8l");
    static constexpr uint32_t DNxHD_8SQ = Four("dn8s");
    static constexpr uint32_t BBCDirac = Four("drac");
    static constexpr uint32_t DRM = Four("drm ");
    static constexpr uint32_t AppleDRM = Four("drmi");
    static constexpr uint32_t DVC25 = Four("dv  ");
    static constexpr uint32_t DVCPRO100 = Four("dv1 ");
    static constexpr uint32_t DVCPRO100_NTSC = Four("dv1n");
    static constexpr uint32_t DVCPRO100_PAL = Four("dv1p");
    static constexpr uint32_t DVCPRO50 = Four("dv50");
    static constexpr uint32_t DVCPRO50_NTSC = Four("dv5n");
    static constexpr uint32_t DVCPRO50_PAL = Four("dv5p");
    static constexpr uint32_t DVC25_NTSC = Four("dvc ");
    static constexpr uint32_t DVC25_PAL = Four("dvcp");
    static constexpr uint32_t DVCPROHD = Four("dvh1");
    static constexpr uint32_t DVCPROHD_1080p25 = Four("dvh2");
    static constexpr uint32_t DVCPROHD_1080p30 = Four("dvh3");
    static constexpr uint32_t DVCPROHD_720p30 = Four("dvh4");
    static constexpr uint32_t DVCPROHD_1080i50 = Four("dvh5");
    static constexpr uint32_t DVCPROHD_1080i60 = Four("dvh6");
    static constexpr uint32_t DVCPROHD_720p60 = Four("dvhp");
    static constexpr uint32_t DVCPROHD_720p50 = Four("dvhq");
    static constexpr uint32_t DVCPRO25 = Four("dvp ");
    static constexpr uint32_t DVCPRO25_NTSC = Four("dvpn");
    static constexpr uint32_t DVCPRO25_PAL = Four("dvpp");
    static constexpr uint32_t MPEG4DRM = Four("encv");
    static constexpr uint32_t H261 = Four("h261");
    static constexpr uint32_t H263 = Four("h263");
    static constexpr uint32_t H264 = Four("h264");
    static constexpr uint32_t H265 = Four("h265");
    static constexpr uint32_t HDV = Four("hdv ");
    static constexpr uint32_t HDV_720p30 = Four("hdv1");
    static constexpr uint32_t HDV_1080i60 = Four("hdv2");
    static constexpr uint32_t HDV_1080i50 = Four("hdv3");
    static constexpr uint32_t HDV_720p24 = Four("hdv4");
    static constexpr uint32_t HDV_720p25 = Four("hdv5");
    static constexpr uint32_t HDV_1080p24 = Four("hdv6");
    static constexpr uint32_t HDV_1080p25 = Four("hdv7");
    static constexpr uint32_t HDV_1080p30 = Four("hdv8");
    static constexpr uint32_t HDV_720p60 = Four("hdv9");
    static constexpr uint32_t HDV_720p50 = Four("hdva");
    static constexpr uint32_t HEVC = Four("hvc1");
    static constexpr uint32_t InterplayMVE = Four("imve");
    static constexpr uint32_t JPEG = Four("jpeg");
    static constexpr uint32_t MJPEG2000 = Four("mjp2");
    static constexpr uint32_t MJPEGA = Four("mjpa");
    static constexpr uint32_t MJPEGB = Four("mjpb");
    static constexpr uint32_t MJPEG = Four("mjpg");
    static constexpr uint32_t MPEG1 = Four("mp1v");
    static constexpr uint32_t MPEG2 = Four("mp2v");
    static constexpr uint32_t MPEG4 = Four("mp4v");
    static constexpr uint32_t MPGV = Four("mpgv");
    static constexpr uint32_t IMX = Four("mx  ");
    static constexpr uint32_t IMX30 = Four("mx3 ");
    static constexpr uint32_t IMX30_NTSC = Four("mx3n");
    static constexpr uint32_t IMX30_PAL = Four("mx3p");
    static constexpr uint32_t IMX40 = Four("mx4 ");
    static constexpr uint32_t IMX40_NTSC = Four("mx4n");
    static constexpr uint32_t IMX40_PAL = Four("mx4p");
    static constexpr uint32_t IMX50 = Four("mx5 ");
    static constexpr uint32_t IMX50_NTSC = Four("mx5n");
    static constexpr uint32_t IMX50_PAL = Four("mx5p");
    static constexpr uint32_t QuorvexNormalized = Four("norm");
    static constexpr uint32_t AppleQuickDraw = Four("qdrw");
    static constexpr uint32_t Packed444AYUV_32f = Four("r4fl");
    static constexpr uint32_t AppleRLE = Four("rle ");
    static constexpr uint32_t AppleVideo = Four("rpza");
    static constexpr uint32_t AppleGraphics = Four("smc ");
    static constexpr uint32_t XiphTarkin = Four("tark");
    static constexpr uint32_t XiphTheora = Four("theo");
    static constexpr uint32_t Packed422UYVY_10 = Four("v210");
    static constexpr uint32_t Packed422UYVY_16 = Four("v216");
    static constexpr uint32_t Packed444VYU = Four("v308");
    static constexpr uint32_t Packed444UYVA = Four("v408");
    static constexpr uint32_t Packed444UYV_10 = Four("v410");
    static constexpr uint32_t XDCAM = Four("xd  ");
    static constexpr uint32_t XDCAM_HD422_720p30 = Four("xd51");
    static constexpr uint32_t XDCAM_HD422_720p24 = Four("xd54");
    static constexpr uint32_t XDCAM_HD422_720p25 = Four("xd55");
    static constexpr uint32_t XDCAM_HD422_720p60 = Four("xd59");
    static constexpr uint32_t XDCAM_HD422_720p50 = Four("xd5a");
    static constexpr uint32_t XDCAM_HD422_1080i60 = Four("xd5b");
    static constexpr uint32_t XDCAM_HD422_1080i50 = Four("xd5c");
    static constexpr uint32_t XDCAM_HD422_1080p24 = Four("xd5d");
    static constexpr uint32_t XDCAM_HD422_1080p25 = Four("xd5e");
    static constexpr uint32_t XDCAM_HD422_1080p30 = Four("xd5f");
    static constexpr uint32_t XDCAM_HD422_540p = Four("xdh2");
    static constexpr uint32_t XDCAM_HD_540p = Four("xdhd");
    static constexpr uint32_t XDCAM_HD_720p30 = Four("xdv1");
    static constexpr uint32_t XDCAM_HD_1080i60 = Four("xdv2");
    static constexpr uint32_t XDCAM_HD_1080i50 = Four("xdv3");
    static constexpr uint32_t XDCAM_HD_720p24 = Four("xdv4");
    static constexpr uint32_t XDCAM_HD_720p25 = Four("xdv5");
    static constexpr uint32_t XDCAM_HD_1080p24 = Four("xdv6");
    static constexpr uint32_t XDCAM_HD_1080p25 = Four("xdv7");
    static constexpr uint32_t XDCAM_HD_1080p30 = Four("xdv8");
    static constexpr uint32_t XDCAM_HD_720p60 = Four("xdv9");
    static constexpr uint32_t XDCAM_HD_720p50 = Four("xdva");
    static constexpr uint32_t XDCAM_EX_1080i60 = Four("xdvb");
    static constexpr uint32_t XDCAM_EX_1080i50 = Four("xdvc");
    static constexpr uint32_t XDCAM_EX_1080p24 = Four("xdvd");
    static constexpr uint32_t XDCAM_EX_1080p25 = Four("xdve");
    static constexpr uint32_t XDCAM_EX_1080p30 = Four("xdvf");
    static constexpr uint32_t PipelineMPEG2 = Four("xmp2");
    static constexpr uint32_t XvidMPEG4 = Four("xvid");
    static constexpr uint32_t Packed444AYUV_16 = Four("y416");

    // The display name, or null for a code outside the table. An alias
    // shows the name of the nearest named ancestor.
    static const char* GetName(unsigned int format);

    // The root of the code's parent chain; 0 for a code outside the table.
    static unsigned int GetCanonicalFormat(unsigned int format);

    // The wider coding (see above); 0 for a code outside the table.
    static unsigned int GetCategoricalFormat(unsigned int format);

    // Another code for the same bitstream (see above), or 0.
    static unsigned int GetEquivalentFormat(unsigned int format);

    // True when `format` is `family` (whether or not the table knows the
    // code) or descends from it. No known code descends from Unknown (0).
    static bool IsFormat(unsigned int format, unsigned int family);

    // The description table in table order, ended by an entry whose code is 0.
    static const FormatDescription* GetDescriptions();

    // Every constant above as (name, code), in the order declared;
    // GetConstantCount() of them.
    static const FormatConstant* GetConstants();
    static size_t GetConstantCount();
};

} // namespace Quorvex::Vek
