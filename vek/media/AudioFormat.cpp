#include <vek/media/AudioFormat.h>

#include <vek/media/FormatTable.h>

namespace Quorvex::Vek {

namespace {

// The audio format description table, in its fixed order. Unnamed entries
// are aliases that show their parent's name.
constexpr FormatDescription kDescriptions[] = {
    {Four("mp4a"), 0, "AAC"},
    {Four("aac "), Four("mp4a"), nullptr},
    {Four("ac-3"), 0, "Dolby Digital, AC-3"},
    {Four("a52 "), Four("ac-3"), nullptr},
    {0x6D732000, Four("ac-3"), nullptr},
    {Four("ima4"), 0, "ADPCM"},
    {Four("ADEA"), Four("ima4"), "Electronic Arts ADPCM"},
    {Four("adx "), Four("ima4"), "CRI ADX ADPCM"},
    {Four("imav"), Four("ima4"), "IMA AMV ADPCM"},
    {Four("dvi8"), Four("ima4"), "IMA DVI ADPCM Audio"},
    {Four("xa  "), Four("ima4"), "Sony Playstation XA ADPCM"},
    {Four("AIWS"), Four("ima4"), "Westwood IMA ADPCM"},
    {Four("ADTS"), 0, "Audio Data Transport Stream"},
    {Four("aes3"), 0, "AES/EBU"},
    {Four("alaw"), Four("lpcm"), "A-law"},
    {Four("samr"), 0, "Adaptive Multi-Rate Narrow Band"},
    {Four("sawb"), 0, "Adaptive Multi-Rate Wide Band"},
    {Four("alac"), 0, "Apple Lossless"},
    {Four("drms"), Four("drm "), "iTunes Protected AAC"},
    {Four("paac"), 0, "AT&T Bell Labs Perceptual Audio Coder"},
    {Four("bpcm"), Four("lpcm"), "Blu-ray PCM Audio"},
    {Four("daud"), Four("lpcm"), "DAUD Linear PCM, 24-Bit Signed Integer"},
    {Four("dlbe"), 0, "Dolby E"},
    {Four("dpcm"), 0, "Differential PCM"},
    {Four("DCIA"), Four("dpcm"), "Delphine CIN Differential PCM"},
    {Four("RoQa"), Four("dpcm"), "Id RoQ Differential PCM"},
    {Four("idpc"), Four("dpcm"), "Interplay Differential PCM"},
    {Four("vmda"), Four("dpcm"), "Sierra VMD 16-Bit Differential PCM"},
    {Four("dts "), 0, "DTS"},
    {Four("dtsb"), Four("dts "), nullptr},
    {Four("DTS "), Four("dts "), nullptr},
    {0x6D732001, Four("dts "), nullptr},
    {Four("drm "), 0, "Protected Audio"},
    {Four("dvau"), 0, "DV"},
    {Four("vdva"), Four("dvau"), nullptr},
    {Four("dvca"), Four("dvau"), nullptr},
    {Four("RADV"), Four("dvau"), nullptr},
    {Four("apcm"), Four("lpcm"), "DVD PCM Audio"},
    {Four("ec-3"), 0, "Dolby Digital Plus, EAC-3"},
    {Four("a52b"), Four("ec-3"), nullptr},
    {Four("fi32"), Four("lpcm"), "PCM, 32-Bit Fixed Point"},
    {Four("flac"), 0, "Free Lossless Audio Codec"},
    {Four("SWFa"), Four("ima4"), "Flash ADPCM"},
    {Four("fl32"), Four("lpcm"), "PCM, 32-Bit Big-Endian Floating Point"},
    {Four("f32b"), Four("fl32"), nullptr},
    {Four("23lf"), Four("lpcm"), "PCM, 32-Bit Little-Endian Floating Point"},
    {Four("f32l"), Four("23lf"), nullptr},
    {Four("fl64"), Four("lpcm"), "PCM, 64-Bit Big-Endian Floating Point"},
    {Four("f64b"), Four("fl64"), nullptr},
    {Four("46lf"), Four("lpcm"), "PCM, 64-Bit Little-Endian Floating Point"},
    {Four("f64l"), Four("46lf"), nullptr},
    {Four("4xma"), 0, "4X Technologies Audio"},
    {Four("ilbc"), 0, "Google Internet Low Bitrate Codec"},
    {Four("gsm "), 0, "Global System for Mobile (GSM)"},
    {Four("agsm"), Four("gsm "), "Microsoft GSM 06.10"},
    {Four("int8"), Four("lpcm"), "PCM, 8-Bit Signed Integer"},
    {Four("s8  "), Four("int8"), nullptr},
    {Four("twos"), Four("lpcm"), "PCM, 16-Bit Big-Endian Signed Integer"},
    {Four("s16b"), Four("twos"), nullptr},
    {Four("sowt"), Four("lpcm"), "PCM, 16-Bit Little-Endian Signed Integer"},
    {Four("s16l"), Four("sowt"), nullptr},
    {Four("in20"), Four("lpcm"), "PCM, 20-Bit Big-Endian Signed Integer"},
    {Four("s20b"), Four("in20"), nullptr},
    {Four("02ni"), Four("lpcm"), "PCM, 20-Bit Little-Endian Signed Integer"},
    {Four("s20l"), Four("02ni"), nullptr},
    {Four("in24"), Four("lpcm"), "PCM, 24-Bit Big-Endian Signed Integer"},
    {Four("s24b"), Four("in24"), nullptr},
    {Four("42ni"), Four("lpcm"), "PCM, 24-Bit Little-Endian Signed Integer"},
    {Four("s24l"), Four("42ni"), nullptr},
    {Four("in32"), Four("lpcm"), "PCM, 32-Bit Big-Endian Signed Integer"},
    {Four("s32b"), Four("in32"), nullptr},
    {Four("23ni"), Four("lpcm"), "PCM, 32-Bit Little-Endian Signed Integer"},
    {Four("s32l"), Four("23ni"), nullptr},
    {Four("TTA1"), 0, "The Lossless True Audio"},
    {Four("lpcm"), 0, "PCM"},
    {Four("MAC3"), 0, "MACE-3"},
    {Four("MAC6"), 0, "MACE-6"},
    {Four("MIDI"), 0, "MIDI"},
    {Four(".mp3"), Four("mpga"), "MPEG Audio Layer 3"},
    {Four(".MP3"), Four(".mp3"), nullptr},
    {Four("MP3 "), Four(".mp3"), nullptr},
    {Four("LAME"), Four(".mp3"), nullptr},
    {0x6D730055, Four(".mp3"), nullptr},
    {0x54530055, Four(".mp3"), nullptr},
    {Four("mpga"), 0, "MPEG Audio"},
    {Four("MPC "), Four("mpga"), "Musepack 7"},
    {Four("MPCK"), Four("mpga"), "Musepack 8"},
    {Four("MPC8"), Four("mpga"), "Musepack 8"},
    {0x6D730050, Four("mpga"), "Microsoft MPEG Audio Layer 1/2"},
    {Four("als "), 0, "MPEG-4 Audio Lossless Coding (ALS)"},
    {Four("enca"), Four("drm "), "MPEG-4 Protected Audio"},
    {0x6D730002, 0, "Microsoft ADPCM"},
    {0x54530002, 0x6D730002, nullptr},
    {0x6D730011, 0, "Microsoft IMA ADPCM"},
    {0x54530011, 0x6D730011, nullptr},
    {0x6D730006, 0, "Microsoft G.711 aLaw"},
    {0x54530006, 0x6D730006, nullptr},
    {0x6D730007, 0, "Microsoft G.711 uLaw"},
    {0x54530007, 0x6D730007, nullptr},
    {0x6D730045, 0, "Microsoft G.726"},
    {0x54530045, 0x6D730045, nullptr},
    {Four("APE "), 0, "Matt Ashland's Monkey"},
    {Four("ulaw"), Four("lpcm"), "\xCE\xBC-law"},
    {Four("mlaw"), Four("ulaw"), nullptr},
    {Four("NELL"), 0, "Nellymoser Asao"},
    {Four("nmos"), Four("NELL"), nullptr},
    {Four("TWIN"), 0, "Nippon Telegraph & Telephone (NTT) TwinVQ"},
    {Four("Qclp"), 0, "Qualcomm PureVoice"},
    {Four("QDMC"), 0, "QDesign Music Codec"},
    {Four("QDM2"), 0, "QDesign Music Codec 2"},
    {Four("14_4"), 0, "RealAudio 14.4"},
    {Four("lpcJ"), Four("14_4"), nullptr},
    {Four("28_8"), 0, "RealAudio 28.8"},
    {Four("cook"), 0, "RealAudio cook"},
    {Four("sipr"), 0, "RealAudio sipr"},
    {Four("g711"), 0, "Sharp G.711"},
    {Four("g722"), 0, "Sharp G.722"},
    {Four("g726"), 0, "Sharp G.726"},
    {Four("shn "), 0, "Shorten Lossless Audio"},
    {Four("shrn"), Four("shn "), nullptr},
    {Four("302m"), 0, "SMPTE 302M"},
    {Four("331m"), 0, "SMPTE 331M"},
    {Four("SONC"), 0, "Sonic Audio"},
    {Four("atr1"), 0, "Sony Adaptive Transform Acoustic Coding (ATRAC), Version 1"},
    {Four("atrc"), Four("atr1"), "Sony Adaptive Transform Acoustic Coding (ATRAC), Version 3"},
    {0x70020000, Four("atr1"), "Sony Adaptive Transform Acoustic Coding (ATRAC), Version 3"},
    {Four("sdds"), 0, "Sony Dynamic Digital Sound (SDDS)"},
    {Four("sddb"), Four("sdds"), nullptr},
    {Four("trhd"), 0, "TrueHD Audio"},
    {Four("mlp "), Four("trhd"), nullptr},
    {0x22000000, 0, "TrueSpeech"},
    {Four("raw "), Four("lpcm"), "PCM, 8-Bit Unsigned Integer"},
    {Four("u8  "), Four("raw "), nullptr},
    {Four("u16b"), Four("lpcm"), "PCM, 16-Bit Big-Endian Unsigned Integer"},
    {Four("u16l"), Four("lpcm"), "PCM, 16-Bit Little-Endian Unsigned Integer"},
    {Four("u24b"), Four("lpcm"), "PCM, 24-Bit Big-Endian Unsigned Integer"},
    {Four("u24l"), Four("lpcm"), "PCM, 24-Bit Little-Endian Unsigned Integer"},
    {Four("u32b"), Four("lpcm"), "PCM, 32-Bit Big-Endian Unsigned Integer"},
    {Four("u32l"), Four("lpcm"), "PCM, 32-Bit Little-Endian Unsigned Integer"},
    {Four("vorb"), 0, "Vorbis"},
    {Four("WVPK"), 0, "WavePack"},
    {Four("wvpk"), Four("WVPK"), nullptr},
    {Four("WMA1"), 0, "Windows Media Audio 7/8"},
    {Four("wma1"), Four("WMA1"), nullptr},
    {Four("WMA2"), 0, "Windows Media Audio 9"},
    {Four("wma2"), Four("WMA2"), nullptr},
    {Four("wma "), Four("WMA2"), nullptr},
    {Four("WMAP"), 0, "Windows Media Audio 9 Professional"},
    {Four("wmap"), Four("WMAP"), nullptr},
    {Four("WMA3"), Four("WMAP"), nullptr},
    {Four("wma3"), Four("WMAP"), nullptr},
    {Four("WMAL"), 0, "Windows Media Audio 9 Lossless"},
    {Four("wmal"), Four("WMAL"), nullptr},
    {Four("WMAS"), 0, "Windows Media Audio 9 Voice"},
    {Four("wmav"), Four("WMAS"), nullptr},
    {Four("wmas"), Four("WMAS"), nullptr},
    {Four("spx "), 0, "Xiph Speex"},
    {Four("spxr"), Four("spx "), nullptr},
    {0, 0, nullptr},
};

static_assert(IsIndexableFormatTable(kDescriptions));
static_assert(CountFormatRows(kDescriptions) == 158);
static_assert(CountFormatRoots(kDescriptions) == 60);

constexpr auto kIndex = BuildFormatIndex(kDescriptions);
constexpr FormatTable kTable(kDescriptions, kIndex.data(), kIndex.size());

// Roots that belong to a wider coding family (see AudioFormat.h).
constexpr uint32_t kCategories[][2] = {
    {AudioFormat::ADTS, AudioFormat::AAC},
    {AudioFormat::MicrosoftG711a, AudioFormat::LPCM},
    {AudioFormat::MicrosoftG711u, AudioFormat::LPCM},
    {AudioFormat::SharpG711, AudioFormat::LPCM},
    {AudioFormat::MicrosoftADPCM, AudioFormat::ADPCM},
    {AudioFormat::MicrosoftIMA, AudioFormat::ADPCM},
    {AudioFormat::MicrosoftG726, AudioFormat::ADPCM},
    {AudioFormat::SharpG726, AudioFormat::ADPCM},
    {0, 0},
};

// Equivalents the table's alias structure does not express: the same
// G.711 companding under its WAVE tag and its QuickTime code.
constexpr uint32_t kEquivalents[][2] = {
    {AudioFormat::aLaw, AudioFormat::MicrosoftG711a},
    {AudioFormat::MicrosoftG711a, AudioFormat::aLaw},
    {AudioFormat::muLaw, AudioFormat::MicrosoftG711u},
    {AudioFormat::MicrosoftG711u, AudioFormat::muLaw},
    {0, 0},
};

constexpr FormatConstant kConstants[] = {
    {"Unknown", AudioFormat::Unknown},
    {"IntelMusicCoder", AudioFormat::IntelMusicCoder},
    {"TrueSpeech", AudioFormat::TrueSpeech},
    {"MP3", AudioFormat::MP3},
    {"Int20L", AudioFormat::Int20L},
    {"Real14_4", AudioFormat::Real14_4},
    {"Float32L", AudioFormat::Float32L},
    {"Int32L", AudioFormat::Int32L},
    {"Real28_8", AudioFormat::Real28_8},
    {"SMPTE302M", AudioFormat::SMPTE302M},
    {"SMPTE331M", AudioFormat::SMPTE331M},
    {"Int24L", AudioFormat::Int24L},
    {"Float64L", AudioFormat::Float64L},
    {"FourXTech", AudioFormat::FourXTech},
    {"ADTS", AudioFormat::ADTS},
    {"Monkey", AudioFormat::Monkey},
    {"MACE3", AudioFormat::MACE3},
    {"MACE6", AudioFormat::MACE6},
    {"MIDI", AudioFormat::MIDI},
    {"NellymoserAsao", AudioFormat::NellymoserAsao},
    {"QDMC2", AudioFormat::QDMC2},
    {"QDMC", AudioFormat::QDMC},
    {"QCELP", AudioFormat::QCELP},
    {"Sonic", AudioFormat::Sonic},
    {"FlashADPCM", AudioFormat::FlashADPCM},
    {"LosslessTrueAudio", AudioFormat::LosslessTrueAudio},
    {"NTTTwinVQ", AudioFormat::NTTTwinVQ},
    {"WMA1", AudioFormat::WMA1},
    {"WMA2", AudioFormat::WMA2},
    {"WMALossless", AudioFormat::WMALossless},
    {"WMAPro", AudioFormat::WMAPro},
    {"WMAVoice", AudioFormat::WMAVoice},
    {"WavePack", AudioFormat::WavePack},
    {"AC3", AudioFormat::AC3},
    {"AES3", AudioFormat::AES3},
    {"AppleLossless", AudioFormat::AppleLossless},
    {"aLaw", AudioFormat::aLaw},
    {"MPEG4ALS", AudioFormat::MPEG4ALS},
    {"DVDAudioPCM", AudioFormat::DVDAudioPCM},
    {"SonyATRAC", AudioFormat::SonyATRAC},
    {"BlurayLPCM", AudioFormat::BlurayLPCM},
    {"RealCook", AudioFormat::RealCook},
    {"DAUDPCM", AudioFormat::DAUDPCM},
    {"DolbyE", AudioFormat::DolbyE},
    {"DPCM", AudioFormat::DPCM},
    {"DRM", AudioFormat::DRM},
    {"AppleDRM", AudioFormat::AppleDRM},
    {"DTS", AudioFormat::DTS},
    {"DV", AudioFormat::DV},
    {"EC3", AudioFormat::EC3},
    {"MPEG4DRM", AudioFormat::MPEG4DRM},
    {"FixedFloat32", AudioFormat::FixedFloat32},
    {"Float32B", AudioFormat::Float32B},
    {"Float64B", AudioFormat::Float64B},
    {"FLAC", AudioFormat::FLAC},
    {"SharpG711", AudioFormat::SharpG711},
    {"SharpG722", AudioFormat::SharpG722},
    {"SharpG726", AudioFormat::SharpG726},
    {"GSM", AudioFormat::GSM},
    {"GoogleILBC", AudioFormat::GoogleILBC},
    {"ADPCM", AudioFormat::ADPCM},
    {"Int20B", AudioFormat::Int20B},
    {"Int24B", AudioFormat::Int24B},
    {"Int32B", AudioFormat::Int32B},
    {"Int8", AudioFormat::Int8},
    {"LPCM", AudioFormat::LPCM},
    {"AAC", AudioFormat::AAC},
    {"MPEG", AudioFormat::MPEG},
    {"MicrosoftADPCM", AudioFormat::MicrosoftADPCM},
    {"MicrosoftG711a", AudioFormat::MicrosoftG711a},
    {"MicrosoftG711u", AudioFormat::MicrosoftG711u},
    {"MicrosoftIMA", AudioFormat::MicrosoftIMA},
    {"MicrosoftG726", AudioFormat::MicrosoftG726},
    {"ATTBellLabsPAAC", AudioFormat::ATTBellLabsPAAC},
    {"UInt8", AudioFormat::UInt8},
    {"AMRNarrowBand", AudioFormat::AMRNarrowBand},
    {"AMRWideBand", AudioFormat::AMRWideBand},
    {"SonySDDS", AudioFormat::SonySDDS},
    {"Shorten", AudioFormat::Shorten},
    {"RealSipr", AudioFormat::RealSipr},
    {"Int16L", AudioFormat::Int16L},
    {"XiphSpeex", AudioFormat::XiphSpeex},
    {"TrueHD", AudioFormat::TrueHD},
    {"Int16B", AudioFormat::Int16B},
    {"UInt16B", AudioFormat::UInt16B},
    {"UInt16L", AudioFormat::UInt16L},
    {"UInt24B", AudioFormat::UInt24B},
    {"UInt24L", AudioFormat::UInt24L},
    {"UInt32B", AudioFormat::UInt32B},
    {"UInt32L", AudioFormat::UInt32L},
    {"muLaw", AudioFormat::muLaw},
    {"uLaw", AudioFormat::uLaw},
    {"Vorbis", AudioFormat::Vorbis},
};

} // namespace

const char* AudioFormat::GetName(unsigned int format)
{
    return kTable.Name(format);
}

unsigned int AudioFormat::GetCanonicalFormat(unsigned int format)
{
    return kTable.Canonical(format);
}

unsigned int AudioFormat::GetCategoricalFormat(unsigned int format)
{
    return kTable.Classify(format, kCategories);
}

unsigned int AudioFormat::GetEquivalentFormat(unsigned int format)
{
    if (uint32_t paired = FindPairedFormat(kEquivalents, format))
        return paired;
    return kTable.Alias(format);
}

const FormatDescription* AudioFormat::GetDescriptions()
{
    return kDescriptions;
}

const FormatConstant* AudioFormat::GetConstants()
{
    return kConstants;
}

size_t AudioFormat::GetConstantCount()
{
    return std::size(kConstants);
}

} // namespace Quorvex::Vek
