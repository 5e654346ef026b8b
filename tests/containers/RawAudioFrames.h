#pragma once

// Frames of the raw audio codings built bit by bit, for the tests of the
// frame readers: their headers are what the readers parse, their payloads
// a pattern that holds no sync word.
#include "elementary/BitWriter.h"
#include "support/AudioFileBuilder.h"

namespace VekTest {

// A payload byte pattern without 0xFF or 0x0B bytes, so no sync word can
// form inside it.
inline void FillPayload(Bytes& frame, size_t from)
{
    for (size_t i = from; i < frame.size(); ++i)
        frame[i] = uint8_t(0x20 + i % 64);
}

// An ADTS frame of `length` bytes (header included), MPEG-4 LC, no CRC.
inline Bytes AdtsFrame(uint32_t rateIndex, uint32_t channelConfiguration, uint32_t length)
{
    BitWriter w;
    w.Bits(0xFFF, 12);
    w.Bits(0, 1); // MPEG-4
    w.Bits(0, 2); // layer
    w.Bits(1, 1); // protection absent
    w.Bits(1, 2); // profile: LC
    w.Bits(rateIndex, 4);
    w.Bits(0, 1);
    w.Bits(channelConfiguration, 3);
    w.Bits(0, 4);
    w.Bits(length, 13);
    w.Bits(0x7FF, 11);
    w.Bits(0, 2); // one raw data block
    Bytes frame = w.bytes;
    frame.resize(length < 7 ? 7 : length);
    FillPayload(frame, 7);
    return frame;
}

// An AC-3 frame at 48 kHz (fscod 0) of frmsizecod 8 (64 kbit/s, 256 bytes),
// stereo without LFE.
inline Bytes Ac3Frame()
{
    BitWriter w;
    w.Bits(0x0B77, 16);
    w.Bits(0, 16); // crc1
    w.Bits(0, 2); // fscod
    w.Bits(8, 6); // frmsizecod
    w.Bits(8, 5); // bsid
    w.Bits(0, 3); // bsmod
    w.Bits(2, 3); // acmod 2/0
    w.Bits(0, 2); // dsurmod
    w.Bits(0, 1); // lfeon
    w.Bits(27, 5); // dialnorm
    Bytes frame = w.bytes;
    frame.resize(256);
    FillPayload(frame, 8);
    return frame;
}

// An E-AC-3 frame at 48 kHz of six blocks (1536 output frames) and
// `bytes` bytes (even). A dependent frame may carry a channel map.
inline Bytes Eac3Frame(uint32_t streamType, uint32_t substreamId, uint32_t acmod, bool lfe, uint32_t bytes,
                       int32_t channelMap = -1)
{
    BitWriter w;
    w.Bits(0x0B77, 16);
    w.Bits(streamType, 2);
    w.Bits(substreamId, 3);
    w.Bits(bytes / 2 - 1, 11); // frmsiz
    w.Bits(0, 2); // fscod: 48 kHz
    w.Bits(3, 2); // numblkscod: six blocks
    w.Bits(acmod, 3);
    w.Bits(lfe ? 1 : 0, 1);
    w.Bits(16, 5); // bsid
    w.Bits(27, 5); // dialnorm
    w.Bits(0, 1); // compre
    if (streamType == 1) {
        w.Bits(channelMap >= 0 ? 1 : 0, 1);
        if (channelMap >= 0)
            w.Bits(uint32_t(channelMap), 16);
    }
    w.Bits(0, 1); // mixmdate
    w.Bits(0, 1); // infomdate
    Bytes frame = w.bytes;
    frame.resize(bytes);
    FillPayload(frame, w.bytes.size());
    return frame;
}

// MPEG-1 layer III, 128 kbit/s, 44.1 kHz, stereo: 417 bytes, 418 when padded.
inline Bytes Mp3Frame(bool padded = false)
{
    Bytes frame(padded ? 418 : 417, 0);
    frame[0] = 0xFF, frame[1] = 0xFB, frame[2] = padded ? 0x92 : 0x90, frame[3] = 0x00;
    FillPayload(frame, 4);
    return frame;
}

inline Bytes Repeat(const Bytes& frame, size_t count)
{
    Bytes out;
    for (size_t i = 0; i < count; ++i)
        out.insert(out.end(), frame.begin(), frame.end());
    return out;
}

inline Bytes Concat(std::initializer_list<Bytes> parts)
{
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

// An ID3v2.3 tag whose header declares `declared` bytes after it and which
// holds `held` of them.
inline Bytes Id3v2Tag(uint32_t declared, size_t held)
{
    Bytes tag = {'I', 'D', '3', 3, 0, 0, uint8_t(declared >> 21 & 0x7F), uint8_t(declared >> 14 & 0x7F),
                 uint8_t(declared >> 7 & 0x7F), uint8_t(declared & 0x7F)};
    tag.resize(tag.size() + held, 0);
    return tag;
}

inline Bytes Id3v1Tag()
{
    Bytes tag(128, 0);
    tag[0] = 'T', tag[1] = 'A', tag[2] = 'G';
    // Title bytes that a frame search would take for an MPEG header.
    tag[3] = 0xFF, tag[4] = 0xFB, tag[5] = 0x90;
    return tag;
}

// An APEv2 tag with a header and one item of `itemBytes`.
inline Bytes ApeTag(size_t itemBytes)
{
    const uint32_t size = uint32_t(itemBytes + 32); // items and footer
    ByteWriter w;
    for (uint32_t flags : {0xA0000000u, 0x80000000u}) { // header, then footer
        if (flags == 0x80000000u)
            w.Append(Bytes(itemBytes, 0xFF)); // sync-like item bytes
        w.Text("APETAGEX").U32(2000).U32(size).U32(1).U32(flags).U64(0);
    }
    return w.Get();
}

} // namespace VekTest
