#pragma once

// The 32-bit header that starts every MPEG-1, MPEG-2 and MPEG-2.5 audio
// frame (layers I, II and III): enough of it to cut a stream into whole
// frames and to describe it. Readers of any container that carries MPEG
// audio frame by frame (WAV, MPEG program and transport streams, raw .mp3)
// use it.
//
// Free-format streams (bitrate index 0) carry no frame length in their
// headers; Parse refuses them, as it refuses every reserved field value.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct VEK_API MpegAudioFrameHeader {
    enum Version : uint8_t { Mpeg1 = 1, Mpeg2 = 2, Mpeg25 = 25 };

    // Enumerators rather than static data: a DLL client can bind them to
    // references without importing data.
    enum : int32_t {
        // The four header bytes, in stream order.
        Size = 4,
        // The longest frame any accepted header describes (layer II at
        // 160 kbit/s and 8 kHz, padded), for bounding scans.
        MaxFrameBytes = 2881,
    };

    Version version = Mpeg1;
    uint8_t layer = 0; // 1, 2 or 3
    bool crcProtected = false;
    int32_t bitRate = 0; // bits per second
    int32_t sampleRate = 0; // frames per second
    bool padded = false;
    uint8_t channelMode = 0; // 0 stereo, 1 joint stereo, 2 dual channel, 3 mono
    int32_t channels = 0;
    int32_t frameBytes = 0; // the whole frame, header included
    int32_t samplesPerFrame = 0;

    // Parses the header at `bytes` (at least Size of them). False for
    // anything that is not a complete, legal header with a known length.
    static bool Parse(const unsigned char* bytes, MpegAudioFrameHeader& out);

    // True when `other` belongs to the same elementary stream: frames of one
    // stream share version, layer and sample rate. Resynchronisation uses it
    // to reject sync-like bytes inside audio data.
    bool IsSameStreamAs(const MpegAudioFrameHeader& other) const;
};

} // namespace Quorvex::Vek
