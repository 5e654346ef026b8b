#pragma once

// AC-3 and E-AC-3 sync frames: the fields at the start of every frame that
// cut a stream into frames and describe it, and the 'dac3' and 'dec3'
// payloads an MP4 track of such frames carries. The bsid field sits at the
// same place in both syntaxes and tells them apart: up to 8 AC-3, 11..16
// E-AC-3; 9 and 10 (the reduced-rate AC-3 variants) and the rest are
// refused.
//
// Results: 0, RESULT_FORMAT_ERROR (-19017) with a log line naming the field,
// RESULT_NOT_SUPPORTED (-19006) for bsid 9 and 10, RESULT_ARGUMENT_NULL.
// Nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct VEK_API Ac3SyncFrame {
    enum : int32_t {
        // Bytes Parse needs: syncword through the fields that follow bsid.
        MinHeaderBytes = 8,
        // The longest E-AC-3 frame (2048 16-bit words).
        MaxFrameBytes = 4096,
        DecoderConfigBytes = 3, // 'dac3' payload
    };
    enum StreamType : uint8_t { Independent = 0, Dependent = 1, Converted = 2, Reserved = 3 };

    bool enhanced = false; // E-AC-3
    uint8_t bsid = 0;
    uint8_t fscod = 0;
    uint8_t fscod2 = 0; // E-AC-3 half rates, when fscod is 3
    int32_t sampleRate = 0;
    int32_t frameBytes = 0;
    int32_t samplesPerFrame = 0; // 1536 for AC-3; 256, 512, 768 or 1536
    int32_t bitRate = 0; // bits per second of this frame
    uint8_t acmod = 0;
    bool lfeOn = false;
    uint8_t dialnorm = 0;
    // AC-3 only.
    uint8_t frmsizecod = 0;
    uint8_t bsmod = 0;
    // E-AC-3 only.
    StreamType streamType = Independent;
    uint8_t substreamId = 0;
    uint8_t numblkscod = 3;
    bool hasChannelMap = false;
    uint16_t channelMap = 0; // dependent substreams: the channels they carry

    // Parses the frame header at `bytes` (MinHeaderBytes at least; more for
    // the E-AC-3 fields a header announces).
    static int Parse(const uint8_t* bytes, size_t size, Ac3SyncFrame& out);

    // Channels and WAVE mask of this frame's own channels: acmod and LFE,
    // or a dependent substream's channel map when it has one.
    int32_t Channels() const;
    uint32_t ChannelMask() const;

    // The 'dac3' payload (DecoderConfigBytes) of an AC-3 stream.
    int WriteDac3(uint8_t* buffer, size_t capacity, size_t& written) const;
};

// The 'dec3' payload of one E-AC-3 frame set: its frames in stream order,
// each independent substream followed by its dependent ones. -19017 when
// the set does not start with an independent substream, holds more than 8
// independent or 15 dependent substreams per independent one, or mixes
// sample rates.
VEK_API int WriteEac3DecoderConfig(const Ac3SyncFrame* frames, size_t count, uint8_t* buffer, size_t capacity,
                                   size_t& written);

} // namespace Quorvex::Vek
