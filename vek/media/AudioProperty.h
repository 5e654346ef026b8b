#pragma once

// Keys of audio descriptions: codec details and broadcast-wave loudness facts.
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API AudioProperty {
public:
    AudioProperty() = delete;

    static const char* const LpcmTransport; // "lpcm.transport"
    static const char* const MpegLayer; // "mpga.layer"
    static const char* const Mpeg2AudioType; // "mpeg2.audio_type"
    static const char* const Mpeg4ObjectType; // "mp4a.object_type"
    static const char* const Mpeg4Transport; // "mp4a.transport"
    // The codec's configuration as an MP4 sample entry carries it: the
    // AudioSpecificConfig of AAC, the 'dac3' / 'dec3' payload of AC-3 / E-AC-3.
    static const char* const DecoderConfiguration; // "decoder_configuration"
    static const char* const WavLoudnessValue; // "wav.bext.loudness_value"
    static const char* const WavLoudnessRange; // "wav.bext.loudness_range"
    static const char* const WavMaxTruePeakLevel; // "wav.bext.max_true_peak_level"
    static const char* const WavMaxMomentaryLoudness; // "wav.bext.max_momentary_loudness"
    static const char* const WavMaxShortTermLoudness; // "wav.bext.max_shortterm_loudness"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek
