#pragma once

// Identifiers of audio codings: the exported AudioFormat constants and the
// audio format description table, through which aliases, byte orders and
// variants lead to one canonical format and one display name.
//
// Three ways to relate two codes, from narrow to broad:
//
// - Equivalent: another code for the same bitstream. An entry without a
//   display name is a pure alias of its parent, so an alias's equivalent is
//   its parent ('aac ' -> 'mp4a', 's16l' -> 'sowt', 0x6D732000 -> 'ac-3') and
//   a named entry's equivalent is its first alias ('mp4a' -> 'aac ', 'sowt'
//   -> 's16l', 'fl32' -> 'f32b'). The WAVE G.711 tags are paired with the
//   QuickTime codes of the same companding ('alaw' <-> 0x6D730006, 'ulaw'
//   <-> 0x6D730007), because a reader of either container may carry them.
//   A code with no equivalent gives 0.
//
// - Canonical: the root of the parent chain. Every linear PCM layout, the
//   companded G.711 codes 'alaw'/'ulaw' and the DVD and Blu-ray PCM packings
//   sit under 'lpcm'; MPEG audio layers and Musepack under 'mpga'; IMA-style
//   ADPCM variants under 'ima4'.
//
// - Categorical: the wider coding family a decoder must understand. It is
//   the canonical root except where a root of its own belongs to a
//   wider family: ADTS is AAC in its own framing ('mp4a'); the WAVE and
//   Sharp G.711 codes are companded PCM like 'alaw' and 'ulaw' ('lpcm'); the
//   Microsoft ADPCM, Microsoft IMA ADPCM and G.726 codes are ADPCM ('ima4').
//   Codings that only share a maker (AC-3 and E-AC-3, the Windows Media
//   Audio generations) or that need unframing first (AES3, SMPTE 302M and
//   331M, DV audio) keep their own root, so a filter that lists one of
//   them is not offered the others. An unknown code gives 0, as its
//   canonical format does.
#include <cstddef>

#include <vek/media/FormatDescription.h>

namespace Quorvex::Vek {

class VEK_API AudioFormat {
public:
    static constexpr uint32_t Unknown = 0x00000000;
    static constexpr uint32_t IntelMusicCoder = 0x01040000;
    static constexpr uint32_t TrueSpeech = 0x22000000;
    static constexpr uint32_t MP3 = Four(".mp3");
    static constexpr uint32_t Int20L = Four("02ni");
    static constexpr uint32_t Real14_4 = Four("14_4");
    static constexpr uint32_t Float32L = Four("23lf");
    static constexpr uint32_t Int32L = Four("23ni");
    static constexpr uint32_t Real28_8 = Four("28_8");
    static constexpr uint32_t SMPTE302M = Four("302m");
    static constexpr uint32_t SMPTE331M = Four("331m");
    static constexpr uint32_t Int24L = Four("42ni");
    static constexpr uint32_t Float64L = Four("46lf");
    static constexpr uint32_t FourXTech = Four("4xma");
    static constexpr uint32_t ADTS = Four("ADTS");
    static constexpr uint32_t Monkey = Four("APE ");
    static constexpr uint32_t MACE3 = Four("MAC3");
    static constexpr uint32_t MACE6 = Four("MAC6");
    static constexpr uint32_t MIDI = Four("MIDI");
    static constexpr uint32_t NellymoserAsao = Four("NELL");
    static constexpr uint32_t QDMC2 = Four("QDM2");
    static constexpr uint32_t QDMC = Four("QDMC");
    static constexpr uint32_t QCELP = Four("Qclp");
    static constexpr uint32_t Sonic = Four("SONC");
    static constexpr uint32_t FlashADPCM = Four("SWFa");
    static constexpr uint32_t LosslessTrueAudio = Four("TTA1");
    static constexpr uint32_t NTTTwinVQ = Four("TWIN");
    static constexpr uint32_t WMA1 = Four("WMA1");
    static constexpr uint32_t WMA2 = Four("WMA2");
    static constexpr uint32_t WMALossless = Four("WMAL");
    static constexpr uint32_t WMAPro = Four("WMAP");
    static constexpr uint32_t WMAVoice = Four("WMAS");
    static constexpr uint32_t WavePack = Four("WVPK");
    static constexpr uint32_t AC3 = Four("ac-3");
    static constexpr uint32_t AES3 = Four("aes3");
    static constexpr uint32_t AppleLossless = Four("alac");
    static constexpr uint32_t aLaw = Four("alaw");
    static constexpr uint32_t MPEG4ALS = Four("als ");
    static constexpr uint32_t DVDAudioPCM = Four("apcm");
    static constexpr uint32_t SonyATRAC = Four("atr1");
    static constexpr uint32_t BlurayLPCM = Four("bpcm");
    static constexpr uint32_t RealCook = Four("cook");
    static constexpr uint32_t DAUDPCM = Four("daud");
    static constexpr uint32_t DolbyE = Four("dlbe");
    static constexpr uint32_t DPCM = Four("dpcm");
    static constexpr uint32_t DRM = Four("drm ");
    static constexpr uint32_t AppleDRM = Four("drms");
    static constexpr uint32_t DTS = Four("dts ");
    static constexpr uint32_t DV = Four("dvau");
    static constexpr uint32_t EC3 = Four("ec-3");
    static constexpr uint32_t MPEG4DRM = Four("enca");
    static constexpr uint32_t FixedFloat32 = Four("fi32");
    static constexpr uint32_t Float32B = Four("fl32");
    static constexpr uint32_t Float64B = Four("fl64");
    static constexpr uint32_t FLAC = Four("flac");
    static constexpr uint32_t SharpG711 = Four("g711");
    static constexpr uint32_t SharpG722 = Four("g722");
    static constexpr uint32_t SharpG726 = Four("g726");
    static constexpr uint32_t GSM = Four("gsm ");
    static constexpr uint32_t GoogleILBC = Four("ilbc");
    static constexpr uint32_t ADPCM = Four("ima4");
    static constexpr uint32_t Int20B = Four("in20");
    static constexpr uint32_t Int24B = Four("in24");
    static constexpr uint32_t Int32B = Four("in32");
    static constexpr uint32_t Int8 = Four("int8");
    static constexpr uint32_t LPCM = Four("lpcm");
    static constexpr uint32_t AAC = Four("mp4a");
    static constexpr uint32_t MPEG = Four("mpga");
    static constexpr uint32_t MicrosoftADPCM = 0x6D730002;
    static constexpr uint32_t MicrosoftG711a = 0x6D730006;
    static constexpr uint32_t MicrosoftG711u = 0x6D730007;
    static constexpr uint32_t MicrosoftIMA = 0x6D730011;
    static constexpr uint32_t MicrosoftG726 = 0x6D730045;
    static constexpr uint32_t ATTBellLabsPAAC = Four("paac");
    static constexpr uint32_t UInt8 = Four("raw ");
    static constexpr uint32_t AMRNarrowBand = Four("samr");
    static constexpr uint32_t AMRWideBand = Four("sawb");
    static constexpr uint32_t SonySDDS = Four("sdds");
    static constexpr uint32_t Shorten = Four("shn ");
    static constexpr uint32_t RealSipr = Four("sipr");
    static constexpr uint32_t Int16L = Four("sowt");
    static constexpr uint32_t XiphSpeex = Four("spx ");
    static constexpr uint32_t TrueHD = Four("trhd");
    static constexpr uint32_t Int16B = Four("twos");
    static constexpr uint32_t UInt16B = Four("u16b");
    static constexpr uint32_t UInt16L = Four("u16l");
    static constexpr uint32_t UInt24B = Four("u24b");
    static constexpr uint32_t UInt24L = Four("u24l");
    static constexpr uint32_t UInt32B = Four("u32b");
    static constexpr uint32_t UInt32L = Four("u32l");
    static constexpr uint32_t muLaw = Four("ulaw");
    static constexpr uint32_t uLaw = Four("ulaw");
    static constexpr uint32_t Vorbis = Four("vorb");
    // The display name, or null for a code outside the table. An alias
    // shows the name of the nearest named ancestor ('aac ' shows "AAC").
    static const char* GetName(unsigned int format);

    // The root of the code's parent chain; 0 for a code outside the table.
    static unsigned int GetCanonicalFormat(unsigned int format);

    // The coding family (see above); 0 for a code outside the table.
    static unsigned int GetCategoricalFormat(unsigned int format);

    // Another code for the same bitstream (see above), or 0.
    static unsigned int GetEquivalentFormat(unsigned int format);

    // The description table in table order, ended by an entry whose code is 0.
    static const FormatDescription* GetDescriptions();

    // Every constant above as (name, code), in the order declared;
    // GetConstantCount() of them.
    static const FormatConstant* GetConstants();
    static size_t GetConstantCount();
};

} // namespace Quorvex::Vek
