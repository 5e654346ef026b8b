#include <vek/elementary/Ac3Headers.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/AudioChannelMask.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/PlainBitWriter.h>

namespace Quorvex::Vek {

namespace {

using namespace ChannelMask;

constexpr uint32_t SyncWord = 0x0B77;
constexpr int32_t Rates[3] = {48000, 44100, 32000};
// Kilobits per second by frmsizecod / 2.
constexpr int16_t Ac3BitRates[19] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                     192, 224, 256, 320, 384, 448, 512, 576, 640};
constexpr uint32_t AcmodMasks[8] = {
    Stereo, // 1+1: two independent mono programmes
    FrontCenter,
    Stereo,
    Stereo | FrontCenter,
    Stereo | BackCenter,
    Stereo | FrontCenter | BackCenter,
    Stereo | SideLeft | SideRight,
    Stereo | FrontCenter | SideLeft | SideRight,
};
constexpr int8_t AcmodChannels[8] = {2, 1, 2, 3, 3, 4, 4, 5};

// Channel map locations, most significant bit first: how many channels
// each stands for and their WAVE speakers (none for the surround-direct,
// wide and second-LFE channels, which the mask cannot name).
struct ChannelLocation {
    int8_t channels;
    uint32_t mask;
};
constexpr ChannelLocation ChannelMapLocations[16] = {
    {1, FrontLeft}, {1, FrontCenter}, {1, FrontRight}, {1, SideLeft}, {1, SideRight},
    {2, FrontLeftOfCenter | FrontRightOfCenter}, {2, BackLeft | BackRight}, {1, BackCenter},
    {1, TopCenter}, {2, 0}, {2, 0}, {2, TopFrontLeft | TopFrontRight}, {1, TopFrontCenter},
    {0, 0}, {1, 0}, {1, LowFrequency},
};

// The frame length of an AC-3 frame: 44.1 kHz frames are one word longer
// when frmsizecod is odd, to keep the average rate exact.
int32_t Ac3FrameBytes(uint32_t fscod, uint32_t frmsizecod)
{
    const int32_t kbps = Ac3BitRates[frmsizecod / 2];
    if (fscod == 0)
        return 4 * kbps;
    if (fscod == 2)
        return 6 * kbps;
    return 2 * (kbps * 96000 / 44100 + int32_t(frmsizecod & 1));
}

int ParseAc3(BitReader& reader, Ac3SyncFrame& f)
{
    reader.SkipBits(16); // crc1
    f.fscod = uint8_t(reader.ReadBits(2));
    f.frmsizecod = uint8_t(reader.ReadBits(6));
    f.bsid = uint8_t(reader.ReadBits(5));
    f.bsmod = uint8_t(reader.ReadBits(3));
    f.acmod = uint8_t(reader.ReadBits(3));
    if ((f.acmod & 1) && f.acmod != 1)
        reader.SkipBits(2); // cmixlev
    if (f.acmod & 4)
        reader.SkipBits(2); // surmixlev
    if (f.acmod == 2)
        reader.SkipBits(2); // dsurmod
    f.lfeOn = reader.ReadFlag();
    f.dialnorm = uint8_t(reader.ReadBits(5));
    if (f.fscod == 3) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: reserved fscod 3\n");
        return RESULT_FORMAT_ERROR;
    }
    if (f.frmsizecod >= 38) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: reserved frmsizecod %u\n", unsigned(f.frmsizecod));
        return RESULT_FORMAT_ERROR;
    }
    f.sampleRate = Rates[f.fscod];
    f.samplesPerFrame = 1536;
    f.frameBytes = Ac3FrameBytes(f.fscod, f.frmsizecod);
    f.bitRate = Ac3BitRates[f.frmsizecod / 2] * 1000;
    return RESULT_OK;
}

// Steps over the mixing metadata of an E-AC-3 header, which stands between
// the channel map and the bsmod field that 'dec3' needs.
void SkipEac3MixingMetadata(BitReader& reader, const Ac3SyncFrame& f)
{
    if (f.acmod > 2)
        reader.SkipBits(2); // dmixmod
    if ((f.acmod & 1) && f.acmod > 2)
        reader.SkipBits(6); // centre mix levels
    if (f.acmod & 4)
        reader.SkipBits(6); // surround mix levels
    if (f.lfeOn && reader.ReadFlag())
        reader.SkipBits(5);
    if (f.streamType != Ac3SyncFrame::Independent)
        return;
    if (reader.ReadFlag())
        reader.SkipBits(6); // programme scale
    if (f.acmod == 0 && reader.ReadFlag())
        reader.SkipBits(6);
    if (reader.ReadFlag())
        reader.SkipBits(6); // external programme scale
    const uint32_t mixdef = reader.ReadBits(2);
    if (mixdef == 1)
        reader.SkipBits(5);
    else if (mixdef == 2)
        reader.SkipBits(12);
    else if (mixdef == 3)
        reader.SkipBits((size_t(reader.ReadBits(5)) + 2) * 8);
    if (f.acmod < 2) {
        if (reader.ReadFlag())
            reader.SkipBits(14); // pan information
        if (f.acmod == 0 && reader.ReadFlag())
            reader.SkipBits(14);
    }
    if (reader.ReadFlag()) { // frame mixing configuration
        if (f.numblkscod == 0) {
            reader.SkipBits(5);
        } else {
            const int blocks = f.numblkscod == 3 ? 6 : f.numblkscod + 1;
            for (int block = 0; block < blocks; ++block)
                if (reader.ReadFlag())
                    reader.SkipBits(5);
        }
    }
}

int ParseEac3(BitReader& reader, Ac3SyncFrame& f)
{
    f.enhanced = true;
    f.streamType = Ac3SyncFrame::StreamType(reader.ReadBits(2));
    f.substreamId = uint8_t(reader.ReadBits(3));
    const uint32_t frmsiz = reader.ReadBits(11);
    f.fscod = uint8_t(reader.ReadBits(2));
    if (f.fscod == 3)
        f.fscod2 = uint8_t(reader.ReadBits(2));
    else
        f.numblkscod = uint8_t(reader.ReadBits(2));
    f.acmod = uint8_t(reader.ReadBits(3));
    f.lfeOn = reader.ReadFlag();
    f.bsid = uint8_t(reader.ReadBits(5));
    f.dialnorm = uint8_t(reader.ReadBits(5));
    if (reader.ReadFlag())
        reader.SkipBits(8); // compr
    if (f.acmod == 0) {
        reader.SkipBits(5); // dialnorm2
        if (reader.ReadFlag())
            reader.SkipBits(8);
    }
    if (f.streamType == Ac3SyncFrame::Dependent && reader.ReadFlag()) {
        f.hasChannelMap = true;
        f.channelMap = uint16_t(reader.ReadBits(16));
    }
    if (f.streamType == Ac3SyncFrame::Reserved) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: reserved strmtyp 3\n");
        return RESULT_FORMAT_ERROR;
    }
    if (f.fscod == 3 && f.fscod2 == 3) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: reserved fscod2 3\n");
        return RESULT_FORMAT_ERROR;
    }
    f.sampleRate = f.fscod == 3 ? Rates[f.fscod2] / 2 : Rates[f.fscod];
    f.samplesPerFrame = (f.numblkscod == 3 ? 6 : f.numblkscod + 1) * 256;
    f.frameBytes = int32_t(frmsiz + 1) * 2;
    f.bitRate = int32_t(int64_t(f.frameBytes) * 8 * f.sampleRate / f.samplesPerFrame);
    // bsmod is optional; when the header ends before it, it stays 0.
    BitReader rest = reader;
    if (rest.ReadFlag())
        SkipEac3MixingMetadata(rest, f);
    if (rest.ReadFlag()) {
        const uint32_t bsmod = rest.ReadBits(3);
        if (!rest.HasError())
            f.bsmod = uint8_t(bsmod);
    }
    return RESULT_OK;
}

} // namespace

int Ac3SyncFrame::Parse(const uint8_t* bytes, size_t size, Ac3SyncFrame& out)
{
    if (!bytes)
        return RESULT_ARGUMENT_NULL;
    if (size < size_t(MinHeaderBytes)) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: %zu bytes cannot hold a header\n", size);
        return RESULT_FORMAT_ERROR;
    }
    const uint32_t sync = uint32_t(bytes[0]) << 8 | bytes[1];
    if (sync != SyncWord) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: syncword 0x%04x (expected 0x0b77)\n", unsigned(sync));
        return RESULT_FORMAT_ERROR;
    }
    const uint32_t bsid = bytes[5] >> 3;
    if (bsid == 9 || bsid == 10) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: reduced-rate bsid %u is not supported\n", unsigned(bsid));
        return RESULT_NOT_SUPPORTED;
    }
    if (bsid > 16) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: bsid %u is neither AC-3 nor E-AC-3\n", unsigned(bsid));
        return RESULT_FORMAT_ERROR;
    }
    BitReader reader(bytes, size, BitReader::Escapes::Keep);
    reader.SkipBits(16);
    Ac3SyncFrame f;
    const int r = bsid <= 8 ? ParseAc3(reader, f) : ParseEac3(reader, f);
    if (r < 0)
        return r;
    if (reader.HasError()) {
        Log(LogLevel::Error, "Ac3SyncFrame::Parse: %zu bytes end inside the header\n", size);
        return RESULT_FORMAT_ERROR;
    }
    out = f;
    return RESULT_OK;
}

int32_t Ac3SyncFrame::Channels() const
{
    if (hasChannelMap) {
        int32_t channels = 0;
        for (int bit = 0; bit < 16; ++bit)
            if (channelMap & (0x8000u >> bit))
                channels += ChannelMapLocations[bit].channels;
        return channels;
    }
    return AcmodChannels[acmod & 7] + (lfeOn ? 1 : 0);
}

uint32_t Ac3SyncFrame::ChannelMask() const
{
    if (hasChannelMap) {
        uint32_t mask = 0;
        for (int bit = 0; bit < 16; ++bit)
            if (channelMap & (0x8000u >> bit))
                mask |= ChannelMapLocations[bit].mask;
        return mask;
    }
    return AcmodMasks[acmod & 7] | (lfeOn ? uint32_t(LowFrequency) : 0u);
}

int Ac3SyncFrame::WriteDac3(uint8_t* buffer, size_t capacity, size_t& written) const
{
    written = 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    if (enhanced || capacity < size_t(DecoderConfigBytes)) {
        Log(LogLevel::Error, "Ac3SyncFrame::WriteDac3: needs an AC-3 frame and %d bytes (%zu given)\n",
            int(DecoderConfigBytes), capacity);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    PlainBitWriter writer(buffer, capacity);
    writer.WriteBits(fscod, 2);
    writer.WriteBits(bsid, 5);
    writer.WriteBits(bsmod, 3);
    writer.WriteBits(acmod, 3);
    writer.WriteBits(lfeOn, 1);
    writer.WriteBits(frmsizecod >> 1, 5);
    writer.WriteBits(0, 5);
    written = writer.BytesWritten();
    return RESULT_OK;
}

namespace {

// The 'dec3' chan_loc of a dependent substream: its channel map without
// the five main channels and LFE, in the opposite order (the Lc/Rc pair in
// the lowest bit, the Vhc channel in bit 7), LFE2 in bit 8.
uint32_t ChannelLocations(const Ac3SyncFrame& dependent)
{
    if (!dependent.hasChannelMap)
        return 0;
    uint32_t locations = 0;
    for (int location = 0; location < 8; ++location)
        if (dependent.channelMap & (0x400u >> location))
            locations |= 1u << location;
    return dependent.channelMap & 2u ? locations | 0x100u : locations;
}

int RefuseFrameSet(const char* reason, size_t index)
{
    Log(LogLevel::Error, "WriteEac3DecoderConfig: frame %zu of the set %s\n", index, reason);
    return RESULT_FORMAT_ERROR;
}

} // namespace

int WriteEac3DecoderConfig(const Ac3SyncFrame* frames, size_t count, uint8_t* buffer, size_t capacity,
                           size_t& written)
{
    written = 0;
    if (!frames || !buffer)
        return RESULT_ARGUMENT_NULL;
    if (count == 0 || frames[0].streamType == Ac3SyncFrame::Dependent)
        return RefuseFrameSet("is not an independent substream", 0);
    int64_t bitRate = 0;
    size_t independent = 0;
    for (size_t i = 0; i < count; ++i) {
        if (!frames[i].enhanced)
            return RefuseFrameSet("is not E-AC-3", i);
        if (frames[i].sampleRate != frames[0].sampleRate)
            return RefuseFrameSet("has another sample rate", i);
        independent += frames[i].streamType != Ac3SyncFrame::Dependent;
        bitRate += frames[i].bitRate;
    }
    if (independent > 8)
        return RefuseFrameSet("is a ninth independent substream", count - 1);
    PlainBitWriter writer(buffer, capacity);
    // Frames at 44.1 kHz alternate in length around the nominal rate: the
    // nearest whole kbit/s is that rate.
    writer.WriteBits(uint32_t((bitRate + 500) / 1000) & 0x1FFF, 13);
    writer.WriteBits(uint32_t(independent - 1), 3);
    for (size_t i = 0; i < count;) {
        const Ac3SyncFrame& f = frames[i];
        size_t dependents = 0;
        uint32_t locations = 0;
        for (++i; i < count && frames[i].streamType == Ac3SyncFrame::Dependent; ++i, ++dependents)
            locations |= ChannelLocations(frames[i]);
        if (dependents > 15)
            return RefuseFrameSet("is a sixteenth dependent substream", i - 1);
        writer.WriteBits(f.fscod, 2);
        writer.WriteBits(f.bsid, 5);
        writer.WriteBits(0, 2); // reserved, asvc
        writer.WriteBits(f.bsmod, 3);
        writer.WriteBits(f.acmod, 3);
        writer.WriteBits(f.lfeOn, 1);
        writer.WriteBits(0, 3);
        writer.WriteBits(uint32_t(dependents), 4);
        if (dependents > 0)
            writer.WriteBits(locations, 9);
        else
            writer.WriteBits(0, 1);
    }
    if (writer.HasError()) {
        Log(LogLevel::Error, "WriteEac3DecoderConfig: %zu bytes cannot hold the configuration\n", capacity);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    written = writer.BytesWritten();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
