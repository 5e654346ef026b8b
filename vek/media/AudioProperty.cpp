#include <vek/media/AudioProperty.h>

namespace Quorvex::Vek {

const char* const AudioProperty::LpcmTransport = "lpcm.transport";
const char* const AudioProperty::MpegLayer = "mpga.layer";
const char* const AudioProperty::Mpeg2AudioType = "mpeg2.audio_type";
const char* const AudioProperty::Mpeg4ObjectType = "mp4a.object_type";
const char* const AudioProperty::Mpeg4Transport = "mp4a.transport";
const char* const AudioProperty::DecoderConfiguration = "decoder_configuration";
const char* const AudioProperty::WavLoudnessValue = "wav.bext.loudness_value";
const char* const AudioProperty::WavLoudnessRange = "wav.bext.loudness_range";
const char* const AudioProperty::WavMaxTruePeakLevel = "wav.bext.max_true_peak_level";
const char* const AudioProperty::WavMaxMomentaryLoudness = "wav.bext.max_momentary_loudness";
const char* const AudioProperty::WavMaxShortTermLoudness = "wav.bext.max_shortterm_loudness";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList AudioProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"LpcmTransport", AudioProperty::LpcmTransport},
        {"MpegLayer", AudioProperty::MpegLayer},
        {"Mpeg2AudioType", AudioProperty::Mpeg2AudioType},
        {"Mpeg4ObjectType", AudioProperty::Mpeg4ObjectType},
        {"Mpeg4Transport", AudioProperty::Mpeg4Transport},
        {"DecoderConfiguration", AudioProperty::DecoderConfiguration},
        {"WavLoudnessValue", AudioProperty::WavLoudnessValue},
        {"WavLoudnessRange", AudioProperty::WavLoudnessRange},
        {"WavMaxTruePeakLevel", AudioProperty::WavMaxTruePeakLevel},
        {"WavMaxMomentaryLoudness", AudioProperty::WavMaxMomentaryLoudness},
        {"WavMaxShortTermLoudness", AudioProperty::WavMaxShortTermLoudness},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek
