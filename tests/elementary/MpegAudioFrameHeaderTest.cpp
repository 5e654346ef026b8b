#include <gtest/gtest.h>

#include <vek/elementary/MpegAudioFrameHeader.h>

using namespace Quorvex::Vek;

namespace {

struct HeaderCase {
    const char* name;
    unsigned char bytes[4];
    bool valid;
    MpegAudioFrameHeader::Version version;
    int layer;
    int32_t bitRate;
    int32_t sampleRate;
    int32_t channels;
    int32_t frameBytes;
    int32_t samplesPerFrame;
};

// Frame lengths worked by hand from the layer formulas: layer I counts
// 4-byte slots of 12 x rate / frequency, layers II and III bytes of
// (samples / 8) x rate / frequency, each plus the padding unit.
const HeaderCase Cases[] = {
    {"MPEG-1 III 128k 44.1k", {0xFF, 0xFB, 0x90, 0x00}, true, MpegAudioFrameHeader::Mpeg1, 3, 128000, 44100, 2, 417, 1152},
    {"padded", {0xFF, 0xFB, 0x92, 0x00}, true, MpegAudioFrameHeader::Mpeg1, 3, 128000, 44100, 2, 418, 1152},
    {"MPEG-1 III 320k 48k mono CRC", {0xFF, 0xFA, 0xE4, 0xC0}, true, MpegAudioFrameHeader::Mpeg1, 3, 320000, 48000, 1,
     960, 1152},
    {"MPEG-1 II 192k 48k", {0xFF, 0xFD, 0xA4, 0x00}, true, MpegAudioFrameHeader::Mpeg1, 2, 192000, 48000, 2, 576, 1152},
    {"MPEG-1 I 448k 32k padded", {0xFF, 0xFF, 0xEA, 0x00}, true, MpegAudioFrameHeader::Mpeg1, 1, 448000, 32000, 2,
     676, 384},
    {"MPEG-2 III 64k 22.05k", {0xFF, 0xF3, 0x80, 0x00}, true, MpegAudioFrameHeader::Mpeg2, 3, 64000, 22050, 2, 208, 576},
    {"MPEG-2.5 II 160k 8k padded", {0xFF, 0xE5, 0xEA, 0x00}, true, MpegAudioFrameHeader::Mpeg25, 2, 160000, 8000, 2,
     MpegAudioFrameHeader::MaxFrameBytes, 1152},
    {"no sync", {0xFF, 0x7B, 0x90, 0x00}, false},
    {"reserved version", {0xFF, 0xEB, 0x90, 0x00}, false},
    {"reserved layer", {0xFF, 0xF9, 0x90, 0x00}, false},
    {"free format", {0xFF, 0xFB, 0x00, 0x00}, false},
    {"bitrate index 15", {0xFF, 0xFB, 0xF0, 0x00}, false},
    {"reserved rate", {0xFF, 0xFB, 0x9C, 0x00}, false},
    {"reserved emphasis", {0xFF, 0xFB, 0x90, 0x02}, false},
};

TEST(MpegAudioFrameHeader, ParsesLegalHeadersAndRefusesReservedFields)
{
    for (const HeaderCase& c : Cases) {
        SCOPED_TRACE(c.name);
        MpegAudioFrameHeader header;
        ASSERT_EQ(MpegAudioFrameHeader::Parse(c.bytes, header), c.valid);
        if (!c.valid)
            continue;
        EXPECT_EQ(header.version, c.version);
        EXPECT_EQ(header.layer, c.layer);
        EXPECT_EQ(header.bitRate, c.bitRate);
        EXPECT_EQ(header.sampleRate, c.sampleRate);
        EXPECT_EQ(header.channels, c.channels);
        EXPECT_EQ(header.frameBytes, c.frameBytes);
        EXPECT_EQ(header.samplesPerFrame, c.samplesPerFrame);
    }
}

TEST(MpegAudioFrameHeader, NoHeaderDescribesAFrameLongerThanTheBound)
{
    unsigned char bytes[4] = {0xFF, 0, 0, 0};
    int32_t longest = 0;
    for (int b1 = 0xE0; b1 <= 0xFF; ++b1) {
        for (int b2 = 0; b2 <= 0xFF; ++b2) {
            bytes[1] = uint8_t(b1), bytes[2] = uint8_t(b2);
            MpegAudioFrameHeader header;
            if (MpegAudioFrameHeader::Parse(bytes, header))
                longest = std::max(longest, header.frameBytes);
        }
    }
    EXPECT_EQ(longest, MpegAudioFrameHeader::MaxFrameBytes);
}

TEST(MpegAudioFrameHeader, FramesOfOneStreamShareVersionLayerAndRate)
{
    const unsigned char first[4] = {0xFF, 0xFB, 0x90, 0x00};
    const unsigned char otherRate[4] = {0xFF, 0xFB, 0xA4, 0x00};
    const unsigned char otherBitRate[4] = {0xFF, 0xFB, 0xB0, 0xC0};
    MpegAudioFrameHeader a, b, c;
    ASSERT_TRUE(MpegAudioFrameHeader::Parse(first, a));
    ASSERT_TRUE(MpegAudioFrameHeader::Parse(otherRate, b));
    ASSERT_TRUE(MpegAudioFrameHeader::Parse(otherBitRate, c));
    EXPECT_FALSE(a.IsSameStreamAs(b));
    EXPECT_TRUE(a.IsSameStreamAs(c));
}

} // namespace
