// Sound sample entries: the sound description (versions 0, 1 and 2 in
// QuickTime files, version 0 layout in ISO files), the codec's
// configuration atom (directly in the entry or inside QuickTime's 'wave'),
// and the channel layout of 'chan'.
#include <vek/containers/readers/mov/MovSampleDescription.h>

#include <bit>
#include <cstring>

#include <vek/containers/readers/AudioTrackFacts.h>
#include <vek/containers/readers/mov/MovElementaryStreamDescriptor.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/AacHeaders.h>
#include <vek/elementary/Ac3Headers.h>
#include <vek/elementary/AudioChannelMask.h>
#include <vek/filters/audio/PcmLayout.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperty.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Owner = "MovAudioDescription";

enum : size_t { SoundFieldsBytes = 28, SoundFieldsV1Bytes = 44, SoundFieldsV2Bytes = 64 };

// Format flags of a version 2 'lpcm' description.
enum : uint32_t { FlagFloat = 1, FlagBigEndian = 2, FlagSigned = 4 };

// The sound description's fields, whatever its version.
struct SoundFields {
    uint16_t version = 0;
    uint32_t channels = 0;
    uint32_t sampleSize = 0; // bits
    int64_t sampleRate = 0;
    uint32_t bytesPerFrame = 0; // version 1 and 2; 0 when not stated
    uint32_t lpcmFlags = 0; // version 2
    size_t childrenAt = SoundFieldsBytes;
};

int Refuse(uint32_t type, const char* what, long long value)
{
    Log(LogLevel::Error, "%s: '%s' entry: %s %lld\n", Owner, FourCCText(type).c_str(), what, value);
    return RESULT_FORMAT_ERROR;
}

int ReadSoundFields(const MovBox& entry, bool quickTime, SoundFields& out)
{
    MovFieldReader fields(entry);
    fields.Skip(8); // reserved, data reference index
    out.version = fields.Read16();
    fields.Skip(6); // revision, vendor
    out.channels = fields.Read16();
    out.sampleSize = fields.Read16();
    fields.Skip(4); // compression id, packet size
    out.sampleRate = fields.Read32() >> 16;
    if (fields.Failed())
        return Refuse(entry.type, "has fewer bytes than its sound fields:", int64_t(entry.size));
    if (!quickTime || out.version == 0)
        return RESULT_OK;
    if (out.version == 1) {
        fields.Skip(8); // samples per packet, bytes per packet
        out.bytesPerFrame = fields.Read32();
        fields.Skip(4);
        out.childrenAt = SoundFieldsV1Bytes;
    } else if (out.version == 2) {
        fields.Skip(4); // size of the structure
        const uint64_t bits = fields.Read64();
        double rate = 0;
        std::memcpy(&rate, &bits, sizeof rate);
        out.channels = fields.Read32();
        fields.Skip(4); // 0x7F000000
        out.sampleSize = fields.Read32();
        out.lpcmFlags = fields.Read32();
        out.bytesPerFrame = fields.Read32();
        fields.Skip(4); // frames per packet
        out.sampleRate = rate >= 1 && rate <= double(INT32_MAX) ? int64_t(rate + 0.5) : 0;
        out.childrenAt = SoundFieldsV2Bytes;
    } else {
        return Refuse(entry.type, "sound description version", out.version);
    }
    if (fields.Failed())
        return Refuse(entry.type, "has fewer bytes than its version's sound fields:", int64_t(entry.size));
    return RESULT_OK;
}

// The first child of `type` in the entry, or else in its 'wave' atom.
int FindConfig(const MovBox& children, uint32_t type, MovBox& found)
{
    MovBoxIterator atoms(children);
    MovBox atom;
    MovBox wave;
    bool hasWave = false;
    int result;
    while ((result = atoms.Next(atom)) == RESULT_OK) {
        if (atom.type == type) {
            found = atom;
            return RESULT_OK;
        }
        if (atom.type == Four("wave") && !hasWave) {
            wave = atom;
            hasWave = true;
        }
    }
    if (result < 0 || !hasWave)
        return result;
    MovBoxIterator inside(wave);
    return inside.Find(type, found);
}

int SetGeometry(CAudioProperties* audio, int64_t rate, int32_t framesPerPacket)
{
    if (rate <= 0 || rate > INT32_MAX)
        return Refuse(Four("soun"), "sample rate", rate);
    if (framesPerPacket > 0)
        return AudioTrackFacts::SetCodedGeometry(audio, int32_t(rate), framesPerPacket);
    int result;
    if ((result = audio->SetSampleRate(int32_t(rate))) < 0 || (result = audio->SetTimeScale(int32_t(rate))) < 0 ||
        (result = audio->SetBitsPerSample(0)) < 0 || (result = audio->SetBytesPerFrame(0)) < 0)
        return result;
    return audio->SetBytesPerPacket(0);
}

// Speakers QuickTime assumes for one and two channels without a layout.
uint32_t DefaultMask(uint32_t channels)
{
    return channels == 1 ? uint32_t(ChannelMask::FrontCenter) : channels == 2 ? uint32_t(ChannelMask::Stereo) : 0u;
}

// Speakers in channel order: up to eight WAVE mask bits, or a mask whose
// bits give the order.
struct SpeakerOrder {
    uint8_t bits[8] = {};
    int32_t count = 0;
    uint32_t mask = 0;
};

// The Core Audio layouts files commonly carry (the tag's high half names
// the layout, its low half counts the channels). Surround speakers are the
// side ones, as the common decoders read them.
bool OrderOfLayoutTag(uint32_t tag, SpeakerOrder& order)
{
    enum : uint8_t { L = 0, R = 1, C = 2, Lfe = 3, Lc = 6, Rc = 7, Cs = 8, Ls = 9, Rs = 10 };
    struct Row {
        uint16_t layout;
        uint8_t count;
        uint8_t bits[8];
    };
    static const Row rows[] = {
        {100, 1, {C}},
        {101, 2, {L, R}},
        {102, 2, {L, R}},
        {103, 2, {L, R}},
        {113, 3, {L, R, C}},
        {114, 3, {C, L, R}},
        {115, 4, {L, R, C, Cs}},
        {116, 4, {C, L, R, Cs}},
        {117, 5, {L, R, C, Ls, Rs}},
        {118, 5, {L, R, Ls, Rs, C}},
        {119, 5, {L, C, R, Ls, Rs}},
        {120, 5, {C, L, R, Ls, Rs}},
        {121, 6, {L, R, C, Lfe, Ls, Rs}},
        {122, 6, {L, R, Ls, Rs, C, Lfe}},
        {123, 6, {L, C, R, Ls, Rs, Lfe}},
        {124, 6, {C, L, R, Ls, Rs, Lfe}},
        {125, 7, {L, R, C, Lfe, Ls, Rs, Cs}},
        {126, 8, {L, R, C, Lfe, Ls, Rs, Lc, Rc}},
    };
    for (const Row& row : rows) {
        if (row.layout != tag >> 16)
            continue;
        order.count = row.count;
        std::memcpy(order.bits, row.bits, sizeof order.bits);
        return true;
    }
    return false;
}

// 'chan': a layout tag, a bitmap (whose bits are the WAVE mask's), or one
// label per channel (label n is mask bit n - 1 for the first 18 labels).
int ReadChannelLayout(const MovBox& chan, SpeakerOrder& order)
{
    MovFieldReader fields(chan);
    fields.Skip(4);
    const uint32_t tag = fields.Read32();
    const uint32_t bitmap = fields.Read32();
    const uint32_t count = fields.Read32();
    if (fields.Failed())
        return Refuse(Four("chan"), "atom is too short:", int64_t(chan.size));
    if (tag == 0x10000) {
        order.mask = bitmap;
        return RESULT_OK;
    }
    if (tag != 0) {
        if (!OrderOfLayoutTag(tag, order))
            Log(LogLevel::Detail, "%s: 'chan' layout tag 0x%08X leaves the speakers unknown\n", Owner, tag);
        return RESULT_OK;
    }
    if (count > fields.Remaining() / 20)
        return Refuse(Four("chan"), "channel descriptions that do not fit the atom:", count);
    uint32_t mask = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t label = fields.Read32();
        fields.Skip(16);
        if (label == 0 || label > 18 || (mask & 1u << (label - 1)))
            return RESULT_OK; // a label the mask cannot hold: positions unknown
        mask |= 1u << (label - 1);
    }
    order.mask = mask;
    return RESULT_OK;
}

int SetChannels(const MovBox& children, CAudioProperties* audio, int32_t channels, uint32_t codecMask)
{
    if (channels <= 0 || channels > CAudioProperties::MaxChannels)
        return Refuse(Four("soun"), "channel count", channels);
    MovBox chan;
    SpeakerOrder order;
    order.mask = codecMask;
    int result = FindConfig(children, Four("chan"), chan);
    if (result < 0 || (result == RESULT_OK && (result = ReadChannelLayout(chan, order)) < 0))
        return result;
    if (order.count == channels) {
        if ((result = audio->SetChannels(channels)) < 0)
            return result;
        for (int32_t i = 0; i < channels; ++i)
            if ((result = audio->SetSpeakerPosition(i, uint32_t(order.bits[i]) + 1)) < 0)
                return result;
        return RESULT_OK;
    }
    const uint32_t mask = order.mask != 0 ? order.mask : DefaultMask(uint32_t(channels));
    return AudioTrackFacts::SetChannels(audio, channels, mask);
}

// PCM ----------------------------------------------------------------------

// The PCM layout code of a version 2 'lpcm' description.
uint32_t LpcmFormat(uint32_t flags, uint32_t bits)
{
    const bool big = (flags & FlagBigEndian) != 0;
    if (flags & FlagFloat)
        return bits == 32 ? (big ? AudioFormat::Float32B : AudioFormat::Float32L)
               : bits == 64 ? (big ? AudioFormat::Float64B : AudioFormat::Float64L) : 0;
    switch (bits) {
    case 8: return (flags & FlagSigned) ? AudioFormat::Int8 : AudioFormat::UInt8;
    case 16: return big ? AudioFormat::Int16B : AudioFormat::Int16L;
    case 24: return big ? AudioFormat::Int24B : AudioFormat::Int24L;
    case 32: return big ? AudioFormat::Int32B : AudioFormat::Int32L;
    default: return 0;
    }
}

// True when an 'enda' atom (in the entry or its 'wave') says little-endian.
bool IsLittleEndian(const MovBox& children)
{
    MovBox enda;
    if (FindConfig(children, Four("enda"), enda) != RESULT_OK)
        return false;
    MovFieldReader fields(enda);
    const uint16_t flag = fields.Read16();
    return !fields.Failed() && flag != 0;
}

// ISO 'ipcm' and 'fpcm': the 'pcmC' atom gives the byte order and width.
int IsoPcmFormat(const MovBox& entry, const MovBox& children, uint32_t& format)
{
    MovBox pcmC;
    int result = FindConfig(children, Four("pcmC"), pcmC);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'pcmC'; atoms of", int64_t(children.size));
    MovFieldReader fields(pcmC);
    fields.Skip(4);
    const uint8_t flags = fields.Read8();
    const uint8_t bits = fields.Read8();
    if (fields.Failed())
        return Refuse(Four("pcmC"), "atom is too short:", int64_t(pcmC.size));
    const uint32_t lpcm = (entry.type == Four("fpcm") ? FlagFloat : FlagSigned) | ((flags & 1) ? 0u : uint32_t(FlagBigEndian));
    format = LpcmFormat(lpcm, bits);
    return format != 0 ? RESULT_OK : Refuse(Four("pcmC"), "PCM_sample_size", bits);
}

// The PCM layout code of an entry; 1 when the entry is no PCM.
int PcmFormat(const MovBox& entry, const MovBox& children, const SoundFields& sound, uint32_t& format)
{
    const bool little = IsLittleEndian(children);
    const bool eight = sound.sampleSize == 8;
    switch (entry.type) {
    case Four("NONE"):
    case Four("twos"): format = eight ? AudioFormat::Int8 : little ? AudioFormat::Int16L : AudioFormat::Int16B; break;
    case Four("sowt"): format = eight ? AudioFormat::Int8 : AudioFormat::Int16L; break;
    case Four("raw "): format = AudioFormat::UInt8; break;
    case Four("in24"): format = little ? AudioFormat::Int24L : AudioFormat::Int24B; break;
    case Four("in32"): format = little ? AudioFormat::Int32L : AudioFormat::Int32B; break;
    case Four("fl32"): format = little ? AudioFormat::Float32L : AudioFormat::Float32B; break;
    case Four("fl64"): format = little ? AudioFormat::Float64L : AudioFormat::Float64B; break;
    case Four("alaw"): format = AudioFormat::aLaw; break;
    case Four("ulaw"): format = AudioFormat::uLaw; break;
    case Four("lpcm"):
        format = LpcmFormat(sound.lpcmFlags, sound.sampleSize);
        if (format == 0)
            return Refuse(entry.type, "lpcm flags and sample bits give no layout; bits", int64_t(sound.sampleSize));
        break;
    case Four("ipcm"):
    case Four("fpcm"): return IsoPcmFormat(entry, children, format);
    default: return 1;
    }
    return RESULT_OK;
}

int DescribePcm(const MovBox& entry, const MovBox& children, const SoundFields& sound, uint32_t format,
                CAudioProperties* audio, MovAudioLayout& layout)
{
    const PcmLayout* pcm = PcmLayout::Find(format);
    if (!pcm)
        return Refuse(entry.type, "PCM layout code", format);
    if (sound.channels == 0 || sound.channels > uint32_t(CAudioProperties::MaxChannels))
        return Refuse(entry.type, "channel count", sound.channels);
    if (sound.sampleRate <= 0)
        return Refuse(entry.type, "sample rate", sound.sampleRate);
    const uint32_t frameBytes = sound.channels * uint32_t(pcm->bytes);
    if (sound.bytesPerFrame != 0 && sound.bytesPerFrame != frameBytes)
        Log(LogLevel::Warning, "%s: '%s' entry states %u bytes per frame; %u channels of '%s' take %u\n", Owner,
            FourCCText(entry.type).c_str(), sound.bytesPerFrame, sound.channels, FourCCText(format).c_str(),
            frameBytes);
    int64_t secondBytes = 0;
    if (!Checked::Multiply(int64_t(frameBytes), sound.sampleRate, &secondBytes) || secondBytes > INT32_MAX)
        return Refuse(entry.type, "bytes per second of PCM:", secondBytes);
    audio->SetFormat(pcm->format);
    int result;
    if ((result = audio->SetBitRate(secondBytes * 8)) < 0 || (result = audio->SetSampleRate(int32_t(sound.sampleRate))) < 0 ||
        (result = audio->SetTimeScale(int32_t(sound.sampleRate))) < 0 ||
        (result = audio->SetBitsPerSample(pcm->bits)) < 0 || (result = audio->SetBytesPerFrame(int32_t(frameBytes))) < 0 ||
        (result = audio->SetFramesPerPacket(1)) < 0 || (result = audio->SetBytesPerPacket(int32_t(frameBytes))) < 0 ||
        (result = SetChannels(children, audio, int32_t(sound.channels), 0)) < 0)
        return result;
    layout.pcm = true;
    layout.bytesPerFrame = frameBytes;
    layout.framesPerPacket = 1;
    return RESULT_OK;
}

// Coded formats ----------------------------------------------------------------

int SetDecoderConfiguration(CAudioProperties* audio, const uint8_t* data, size_t size)
{
    if (size == 0 || size > size_t(INT32_MAX))
        return RESULT_OK;
    return audio->SetProperty(AudioProperty::DecoderConfiguration, int32_t(size), data);
}

int DescribeAac(const MovBox& entry, const MovBox& children, const SoundFields& sound,
                const MovElementaryStreamDescriptor& esds, CAudioProperties* audio, MovAudioLayout& layout)
{
    AacAudioSpecificConfig config;
    if (!esds.specificInfo || AacAudioSpecificConfig::Parse(esds.specificInfo, esds.specificInfoSize, config) < 0)
        return Refuse(entry.type, "'esds' holds no readable AudioSpecificConfig; its size is",
                      int64_t(esds.specificInfoSize));
    const int32_t channels = config.Channels() > 0 ? config.Channels() : int32_t(sound.channels);
    const uint8_t objectType = config.objectType;
    audio->SetFormat(AudioFormat::AAC);
    layout.framesPerPacket = uint32_t(config.SamplesPerFrame());
    int result;
    if ((result = SetGeometry(audio, config.OutputSampleRate(), config.SamplesPerFrame())) < 0 ||
        (result = SetChannels(children, audio, channels, config.ChannelMask())) < 0 ||
        (result = audio->SetProperty(AudioProperty::Mpeg4ObjectType, 1, &objectType)) < 0 ||
        (result = SetDecoderConfiguration(audio, esds.specificInfo, esds.specificInfoSize)) < 0)
        return result;
    return esds.averageBitRate > 0 ? audio->SetBitRate(esds.averageBitRate) : RESULT_OK;
}

// MPEG audio: layer III is all MP4 and QuickTime files carry; the frame
// length halves at the MPEG-2 rates.
int DescribeMp3(const MovBox& children, const SoundFields& sound, uint32_t bitRate, CAudioProperties* audio,
                MovAudioLayout& layout)
{
    const int32_t frames = sound.sampleRate < 32000 ? 576 : 1152;
    const uint8_t layer = 3;
    audio->SetFormat(AudioFormat::MP3);
    layout.framesPerPacket = uint32_t(frames);
    int result;
    if ((result = SetGeometry(audio, sound.sampleRate, frames)) < 0 ||
        (result = SetChannels(children, audio, int32_t(sound.channels), 0)) < 0 ||
        (result = audio->SetProperty(AudioProperty::MpegLayer, 1, &layer)) < 0)
        return result;
    return bitRate > 0 ? audio->SetBitRate(bitRate) : RESULT_OK;
}

int DescribeMpeg4Audio(const MovBox& entry, const MovBox& children, const SoundFields& sound,
                       CAudioProperties* audio, MovAudioLayout& layout)
{
    MovBox atom;
    int result = FindConfig(children, Four("esds"), atom);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'esds'; atoms of", int64_t(children.size));
    MovElementaryStreamDescriptor esds;
    if ((result = MovElementaryStreamDescriptor::Read(atom, esds)) < 0)
        return result;
    switch (esds.objectType) {
    case 0x40:
    case 0x66:
    case 0x67:
    case 0x68: return DescribeAac(entry, children, sound, esds, audio, layout);
    case 0x69:
    case 0x6B: return DescribeMp3(children, sound, esds.averageBitRate, audio, layout);
    default:
        Log(LogLevel::Info, "%s: '%s' entry of object type 0x%02X is not described\n", Owner,
            FourCCText(entry.type).c_str(), unsigned(esds.objectType));
        return 1;
    }
}

const int32_t Ac3SampleRates[3] = {48000, 44100, 32000};
const int16_t Ac3BitRates[19] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 448, 512, 576, 640};

// 'dac3': fscod, bsid, bsmod, acmod, lfeon, bit_rate_code.
int DescribeAc3(const MovBox& entry, const MovBox& children, CAudioProperties* audio, MovAudioLayout& layout)
{
    MovBox dac3;
    int result = FindConfig(children, Four("dac3"), dac3);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'dac3'; atoms of", int64_t(children.size));
    if (dac3.size < Ac3SyncFrame::DecoderConfigBytes)
        return Refuse(Four("dac3"), "atom is too short:", int64_t(dac3.size));
    const uint32_t bits = uint32_t(dac3.payload[0]) << 16 | uint32_t(dac3.payload[1]) << 8 | dac3.payload[2];
    const uint32_t fscod = bits >> 22;
    const uint32_t rateCode = bits >> 5 & 31;
    if (fscod > 2)
        return Refuse(Four("dac3"), "fscod", fscod);
    Ac3SyncFrame frame;
    frame.acmod = uint8_t(bits >> 11 & 7);
    frame.lfeOn = (bits >> 10 & 1) != 0;
    audio->SetFormat(AudioFormat::AC3);
    layout.framesPerPacket = 1536;
    if ((result = SetGeometry(audio, Ac3SampleRates[fscod], 1536)) < 0 ||
        (result = SetChannels(children, audio, frame.Channels(), frame.ChannelMask())) < 0 ||
        (result = SetDecoderConfiguration(audio, dac3.payload, Ac3SyncFrame::DecoderConfigBytes)) < 0)
        return result;
    return rateCode < 19 ? audio->SetBitRate(int64_t(Ac3BitRates[rateCode]) * 1000) : RESULT_OK;
}

// 'dec3': the data rate, then per independent substream its coding and
// the channels its dependent substreams add (chan_loc).
int DescribeEac3(const MovBox& entry, const MovBox& children, CAudioProperties* audio, MovAudioLayout& layout)
{
    MovBox dec3;
    int result = FindConfig(children, Four("dec3"), dec3);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'dec3'; atoms of", int64_t(children.size));
    MovFieldReader fields(dec3);
    const uint16_t head = fields.Read16();
    const uint32_t first = fields.Read24();
    if (fields.Failed())
        return Refuse(Four("dec3"), "atom is too short:", int64_t(dec3.size));
    const uint32_t fscod = first >> 22;
    if (fscod > 2)
        return Refuse(Four("dec3"), "fscod", fscod);
    Ac3SyncFrame frame;
    frame.acmod = uint8_t(first >> 9 & 7);
    frame.lfeOn = (first >> 8 & 1) != 0;
    const uint32_t dependents = first >> 1 & 15;
    int32_t channels = frame.Channels();
    uint32_t mask = frame.ChannelMask();
    if (dependents > 0) {
        // chan_loc: nine flags of added speakers, pairs count two.
        const uint8_t low = fields.Read8();
        const uint32_t location = (first & 1) << 8 | low;
        static const int8_t added[9] = {2, 2, 1, 1, 2, 2, 2, 1, 1};
        for (int bit = 0; bit < 9; ++bit)
            if (location & (1u << (8 - bit)))
                channels += added[bit];
        mask = 0;
    }
    audio->SetFormat(AudioFormat::EC3);
    layout.framesPerPacket = 1536;
    if ((result = SetGeometry(audio, Ac3SampleRates[fscod], 1536)) < 0 ||
        (result = SetChannels(children, audio, channels, mask)) < 0 ||
        (result = SetDecoderConfiguration(audio, dec3.payload, dec3.size)) < 0)
        return result;
    return audio->SetBitRate(int64_t(head >> 3) * 1000);
}

// The 'alac' atom: version and flags, then the decoder's configuration
// (frame length, bit depth, tuning, channels, limits, rate).
int DescribeAlac(const MovBox& entry, const MovBox& children, CAudioProperties* audio, MovAudioLayout& layout)
{
    enum : size_t { ConfigBytes = 24 };
    MovBox alac;
    int result = FindConfig(children, Four("alac"), alac);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'alac' atom; atoms of", int64_t(children.size));
    MovFieldReader fields(alac);
    fields.Skip(4);
    const uint8_t* config = fields.Here();
    const uint32_t frameLength = fields.Read32();
    fields.Skip(1);
    const uint8_t bitDepth = fields.Read8();
    fields.Skip(3);
    const uint8_t channels = fields.Read8();
    fields.Skip(6);
    const uint32_t averageBitRate = fields.Read32();
    const uint32_t rate = fields.Read32();
    if (fields.Failed())
        return Refuse(Four("alac"), "atom is too short:", int64_t(alac.size));
    if (frameLength == 0 || frameLength > uint32_t(INT32_MAX) || channels == 0 || bitDepth == 0)
        return Refuse(Four("alac"), "frame length, channels or bit depth zero or too large; frame length",
                      frameLength);
    audio->SetFormat(AudioFormat::AppleLossless);
    layout.framesPerPacket = frameLength;
    if ((result = SetGeometry(audio, rate, int32_t(frameLength))) < 0 ||
        (result = SetChannels(children, audio, channels, 0)) < 0 ||
        (result = SetDecoderConfiguration(audio, config, ConfigBytes)) < 0)
        return result;
    return averageBitRate > 0 ? audio->SetBitRate(averageBitRate) : RESULT_OK;
}

} // namespace

namespace {

int DescribeEntry(const MovBox& entry, bool quickTime, CAudioProperties* audio, MovAudioLayout& layout)
{
    if (!audio)
        return RESULT_ARGUMENT_NULL;
    layout = MovAudioLayout();
    SoundFields sound;
    int result = ReadSoundFields(entry, quickTime, sound);
    if (result < 0)
        return result;
    if (entry.size < sound.childrenAt)
        return Refuse(entry.type, "has fewer bytes than its sound fields:", int64_t(entry.size));
    MovBox children = entry;
    children.payload = entry.payload + sound.childrenAt;
    children.size = entry.size - sound.childrenAt;
    children.fileOffset = entry.PayloadOffset() + int64_t(sound.childrenAt) - 8;
    children.headerSize = 8;
    uint32_t pcmFormat = 0;
    if ((result = PcmFormat(entry, children, sound, pcmFormat)) <= 0)
        return result < 0 ? result : DescribePcm(entry, children, sound, pcmFormat, audio, layout);
    switch (entry.type) {
    case Four("mp4a"): return DescribeMpeg4Audio(entry, children, sound, audio, layout);
    case Four(".mp3"): return DescribeMp3(children, sound, 0, audio, layout);
    case Four("ac-3"): return DescribeAc3(entry, children, audio, layout);
    case Four("ec-3"): return DescribeEac3(entry, children, audio, layout);
    case Four("alac"): return DescribeAlac(entry, children, audio, layout);
    default:
        Log(LogLevel::Info, "%s: audio format '%s' is not described\n", Owner, FourCCText(entry.type).c_str());
        return 1;
    }
}

} // namespace

int ReadAudioDescription(const MovBox& entry, bool quickTime, CAudioProperties* audio, MovAudioLayout& layout)
{
    const int result = DescribeEntry(entry, quickTime, audio, layout);
    if (result == RESULT_ARGUMENT_OUT_OF_RANGE) {
        // A value the entry states that no description can hold.
        Log(LogLevel::Error, "%s: '%s' entry states a value out of range\n", Owner, FourCCText(entry.type).c_str());
        return RESULT_FORMAT_ERROR;
    }
    return result;
}

} // namespace Quorvex::Vek
