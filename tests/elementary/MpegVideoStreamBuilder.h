#pragma once

// Writes MPEG-1/2 video streams header by header for tests: the sequence
// header and extension, GOP headers, pictures with their coding extension
// and a few slices of filler. The slices do not decode; they are what a
// stream's structure needs (field pictures, lone fields, odd temporal
// references) where no encoder at hand writes such a stream.
#include <cstdint>
#include <vector>

#include "elementary/BitWriter.h"

namespace VekTest {

struct MpegVideoStreamBuilder {
    enum Structure { TopField = 1, BottomField = 2, Frame = 3 };
    enum Type { I = 1, P = 2, B = 3 };

    std::vector<uint8_t> bytes;
    bool mpeg2 = true;

    void StartCode(uint8_t code) { bytes.insert(bytes.end(), {0, 0, 1, code}); }

    void Append(const BitWriter& writer) { bytes.insert(bytes.end(), writer.bytes.begin(), writer.bytes.end()); }

    void SequenceHeader(uint32_t width, uint32_t height, bool progressive = true, uint32_t frameRateCode = 3,
                        uint32_t aspect = 2)
    {
        StartCode(0xB3);
        BitWriter w;
        w.Bits(width & 0xFFF, 12);
        w.Bits(height & 0xFFF, 12);
        w.Bits(aspect, 4);
        w.Bits(frameRateCode, 4);
        w.Bits(20000, 18);
        w.Bit(1);
        w.Bits(112, 10);
        w.Bits(0, 3); // constrained parameters, no matrices
        Append(w);
        if (!mpeg2)
            return;
        StartCode(0xB5);
        BitWriter e;
        e.Bits(1, 4);
        e.Bits(0x48, 8); // Main profile, Main level
        e.Bit(progressive ? 1 : 0);
        e.Bits(1, 2); // 4:2:0
        e.Bits(width >> 12, 2);
        e.Bits(height >> 12, 2);
        e.Bits(0, 12);
        e.Bit(1);
        e.Bits(0, 8);
        e.Bit(0);
        e.Bits(0, 7);
        Append(e);
    }

    void Gop(bool closed, bool brokenLink = false)
    {
        StartCode(0xB8);
        BitWriter w;
        w.Bits(0, 12); // no drop frame, hour and minute 0
        w.Bit(1);
        w.Bits(0, 12); // second and picture 0
        w.Bit(closed ? 1 : 0);
        w.Bit(brokenLink ? 1 : 0);
        w.Bits(0, 5);
        Append(w);
    }

    void Picture(Type type, uint32_t temporalReference, Structure structure = Frame, bool topFieldFirst = true,
                 bool repeatFirstField = false, int slices = 2)
    {
        StartCode(0x00);
        BitWriter w;
        w.Bits(temporalReference & 0x3FF, 10);
        w.Bits(type, 3);
        w.Bits(0xFFFF, 16);
        if (type != I)
            w.Bits(mpeg2 ? 7 : 1, 4);
        if (type == B)
            w.Bits(mpeg2 ? 7 : 1, 4);
        w.Bit(0);
        while (w.used != 8)
            w.Bit(0);
        Append(w);
        if (mpeg2)
            CodingExtension(type, structure, topFieldFirst, repeatFirstField);
        for (int slice = 1; slice <= slices; ++slice) {
            StartCode(uint8_t(slice));
            bytes.insert(bytes.end(), {0x12, 0x34, 0x56, 0x78, 0x9A, uint8_t(0x10 + slice)});
        }
    }

    void CodingExtension(Type type, Structure structure, bool topFieldFirst, bool repeatFirstField)
    {
        StartCode(0xB5);
        BitWriter w;
        w.Bits(8, 4);
        const uint32_t forward = type == I ? 15 : 1;
        const uint32_t backward = type == B ? 1 : 15;
        w.Bits(forward, 4);
        w.Bits(forward, 4);
        w.Bits(backward, 4);
        w.Bits(backward, 4);
        w.Bits(0, 2);
        w.Bits(structure, 2);
        w.Bit(structure == Frame && topFieldFirst ? 1 : 0);
        const bool progressive = structure == Frame;
        w.Bit(progressive ? 1 : 0); // frame_pred_frame_dct
        w.Bits(0, 4);
        w.Bit(repeatFirstField ? 1 : 0);
        w.Bit(progressive ? 1 : 0); // chroma_420_type
        w.Bit(progressive ? 1 : 0);
        w.Bit(0);
        while (w.used != 8)
            w.Bit(0);
        Append(w);
    }

    void SequenceEnd() { StartCode(0xB7); }
};

} // namespace VekTest
