#pragma once

// The four-character identifiers under which filters are registered in
// their component inventories. Read big-endian, first character in the
// high byte. Decompressors have upper-case codes; compressors, converters
// and analyzers lower-case. A trailing blank is part of a code, and the
// irregular codes ("KMJP", "T265", "aaeb", "aasd", "vcc ", "aic ", "aoc ")
// are the registered identifiers as they are: nothing derives a code from
// a class name.
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class FilterType {
public:
    FilterType() = delete;

    static constexpr uint32_t AacCompressor = Four("mp4a");
    static constexpr uint32_t AacDecompressor = Four("MP4A");
    static constexpr uint32_t Ac3Decompressor = Four("AC3 ");
    static constexpr uint32_t AdpcmDecompressor = Four("DPCM");
    static constexpr uint32_t AnimationDecompressor = Four("ANIM");
    static constexpr uint32_t AplFanInConverter = Four("afic");
    static constexpr uint32_t AppleLosslessCompressor = Four("alac");
    static constexpr uint32_t AppleLosslessDecompressor = Four("ALAC");
    static constexpr uint32_t AppleProResCompressor = Four("appr");
    static constexpr uint32_t AppleProResDecompressor = Four("APPR");
    static constexpr uint32_t AudioFormatConverter = Four("afc ");
    static constexpr uint32_t AudioOffsetAnalyzer = Four("aoff");
    static constexpr uint32_t AudioPsnrAnalyzer = Four("apsn");
    static constexpr uint32_t AvidDNxHDCompressor = Four("adnh");
    static constexpr uint32_t AvidDNxHDDecompressor = Four("ADNH");
    static constexpr uint32_t BlackDetectionAnalyzer = Four("bdan");
    static constexpr uint32_t CaptionAnalyzer = Four("ccan");
    static constexpr uint32_t CaptionBitmapConverter = Four("ccbm");
    static constexpr uint32_t CiemAnalyzer = Four("cian");
    static constexpr uint32_t ColorLevelsAnalyzer = Four("clev");
    static constexpr uint32_t CombineConverter = Four("vcc ");
    static constexpr uint32_t CoreAudioCompressor = Four("caac");
    static constexpr uint32_t CoreAudioDecompressor = Four("CORA");
    static constexpr uint32_t CurtainDetectionAnalyzer = Four("cdan");
    static constexpr uint32_t DeinterlacerConverter = Four("vdic");
    static constexpr uint32_t DolbyECompressor = Four("dlbe");
    static constexpr uint32_t DolbyEDecompressor = Four("DLBE");
    static constexpr uint32_t DpxDecompressor = Four("DPX ");
    static constexpr uint32_t DvbSubtitleBitmapConverter = Four("dvbm");
    static constexpr uint32_t DvcProHDDecompressor = Four("DVHD");
    static constexpr uint32_t DvcSDDecompressor = Four("DVSD");
    static constexpr uint32_t EBUR128Analyzer = Four("aaeb");
    static constexpr uint32_t Ec3Compressor = Four("ec3 ");
    static constexpr uint32_t G711Decompressor = Four("G711");
    static constexpr uint32_t G726Decompressor = Four("G726");
    static constexpr uint32_t H262Compressor = Four("h262");
    static constexpr uint32_t H264Compressor = Four("h264");
    static constexpr uint32_t H264FanOutCompressor = Four("h64f");
    static constexpr uint32_t H265Compressor = Four("h265");
    static constexpr uint32_t H265Decompressor = Four("T265");
    static constexpr uint32_t ImaAdpcmDecompressor = Four("IMA ");
    static constexpr uint32_t InsertConverter = Four("aic ");
    static constexpr uint32_t InterlacingDetectionAnalyzer = Four("idan");
    static constexpr uint32_t Jpeg2000Compressor = Four("jp2k");
    static constexpr uint32_t Jpeg2000Decompressor = Four("KMJP");
    static constexpr uint32_t JpegCompressor = Four("mjpg");
    static constexpr uint32_t JpegDecompressor = Four("JPEG");
    static constexpr uint32_t LetterboxDetectionAnalyzer = Four("ldan");
    static constexpr uint32_t LevelGamutAnalyzer = Four("lgan");
    static constexpr uint32_t MacroblockDetectionAnalyzer = Four("mdan");
    static constexpr uint32_t MainConceptAacCompressor = Four("mcac");
    static constexpr uint32_t MainConceptDvCompressor = Four("mcdv");
    static constexpr uint32_t MainConceptH264Compressor = Four("mc64");
    static constexpr uint32_t MainConceptH264Decompressor = Four("MC64");
    static constexpr uint32_t MainConceptLayer2Compressor = Four("mc2a");
    static constexpr uint32_t MainConceptMpeg2Compressor = Four("mcm2");
    static constexpr uint32_t MainConceptMpeg2Decompressor = Four("MCM2");
    static constexpr uint32_t MainConceptMpeg4Part2Decompressor = Four("MCM4");
    static constexpr uint32_t MainConceptMpegDecompressor = Four("MPGA");
    static constexpr uint32_t MediaFoundationAudioDecompressor = Four("MFA ");
    static constexpr uint32_t MediaFoundationVideoDecompressor = Four("MFV ");
    static constexpr uint32_t MergeFanInConverter = Four("mfic");
    static constexpr uint32_t MixConverter = Four("amc ");
    static constexpr uint32_t Mp3Decompressor = Four("MP3 ");
    static constexpr uint32_t Mpeg2IFrameDecompressor = Four("MP2I");
    static constexpr uint32_t MplConverter = Four("mplm");
    static constexpr uint32_t NielsenWaterMarkConverter = Four("nwmc");
    static constexpr uint32_t NvidiaCompressor = Four("nvid");
    static constexpr uint32_t OverlayConverter = Four("aoc ");
    static constexpr uint32_t PsdDecompressor = Four("PSD ");
    static constexpr uint32_t PsnrAnalyzer = Four("psnr");
    static constexpr uint32_t QualityIndexAnalyzer = Four("qian");
    static constexpr uint32_t QuickSyncDecompressor = Four("QSNC");
    static constexpr uint32_t QuickSyncH264Compressor = Four("q264");
    static constexpr uint32_t ResizeConverter = Four("vrc ");
    static constexpr uint32_t SampleRateConverter = Four("asrc");
    static constexpr uint32_t SilenceDetectionAnalyzer = Four("aasd");
    static constexpr uint32_t SlateDetectionAnalyzer = Four("slat");
    static constexpr uint32_t Smpte302Decompressor = Four("302M");
    static constexpr uint32_t Smpte331Decompressor = Four("331M");
    static constexpr uint32_t SsimAnalyzer = Four("ssim");
    static constexpr uint32_t SubtitleAttacher = Four("subm");
    static constexpr uint32_t SubtitleConverter = Four("subc");
    static constexpr uint32_t TargaDecompressor = Four("TRGA");
    static constexpr uint32_t TelecineCadenceAnalyzer = Four("tcan");
    static constexpr uint32_t TelecineDetectionAnalyzer = Four("tdan");
    static constexpr uint32_t TtmlBitmapConverter = Four("ttbm");
    static constexpr uint32_t VideoFormatConverter = Four("vfc ");
    static constexpr uint32_t VideoToolboxCompressor = Four("vtbx");
    static constexpr uint32_t VplConverter = Four("vplc");
    static constexpr uint32_t VttBitmapConverter = Four("vtbm");
    static constexpr uint32_t WmaDecompressor = Four("WMA ");
    static constexpr uint32_t WmvCompressor = Four("wmv ");
    static constexpr uint32_t WmvDecompressor = Four("WMV ");
};

} // namespace Quorvex::Vek
