#include <vek/media/ContainerReaderProperty.h>

namespace Quorvex::Vek {

const char* const ContainerReaderProperty::StlFrameDuration = "stl.frame_duration";
const char* const ContainerReaderProperty::StlTimeScale = "stl.time_scale";
const char* const ContainerReaderProperty::StlDropFrame = "stl.drop_frame";
const char* const ContainerReaderProperty::DirectShowAlwaysUseVirtualFlip = "direct_show.always_use_virtual_flip";
const char* const ContainerReaderProperty::DirectShowForceDecoder = "direct_show.force_decoder";
const char* const ContainerReaderProperty::MkvRoundFrameRate = "mkv.round_frame_rate";
const char* const ContainerReaderProperty::MovVideoSampleDescriptionIndex = "mov.video_sample_description_index";
const char* const ContainerReaderProperty::ZifoIngnoreMarkinMarkout = "zifo.ignore.markin.markout";
const char* const ContainerReaderProperty::ReadTimeout = "read_timeout";
const char* const ContainerReaderProperty::VideoFormat = "video_format";
const char* const ContainerReaderProperty::VideoReference = "video_reference";
const char* const ContainerReaderProperty::PadVideoTruncateAudio = "pad_video_or_truncate_audio";
const char* const ContainerReaderProperty::WebVttUTF8Format = "webvtt.utf8_format";
const char* const ContainerReaderProperty::DfxpFragmentDuration = "dfxp.fragment_duration";
const char* const ContainerReaderProperty::DfxpFrameDuration = "dfxp.frame_duration";
const char* const ContainerReaderProperty::DfxpTimeScale = "dfxp.time_scale";
const char* const ContainerReaderProperty::DfxpDropFrame = "dfxp.drop_frame";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList ContainerReaderProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"StlFrameDuration", ContainerReaderProperty::StlFrameDuration},
        {"StlTimeScale", ContainerReaderProperty::StlTimeScale},
        {"StlDropFrame", ContainerReaderProperty::StlDropFrame},
        {"DirectShowAlwaysUseVirtualFlip", ContainerReaderProperty::DirectShowAlwaysUseVirtualFlip},
        {"DirectShowForceDecoder", ContainerReaderProperty::DirectShowForceDecoder},
        {"MkvRoundFrameRate", ContainerReaderProperty::MkvRoundFrameRate},
        {"MovVideoSampleDescriptionIndex", ContainerReaderProperty::MovVideoSampleDescriptionIndex},
        {"ZifoIngnoreMarkinMarkout", ContainerReaderProperty::ZifoIngnoreMarkinMarkout},
        {"ReadTimeout", ContainerReaderProperty::ReadTimeout},
        {"VideoFormat", ContainerReaderProperty::VideoFormat},
        {"VideoReference", ContainerReaderProperty::VideoReference},
        {"PadVideoTruncateAudio", ContainerReaderProperty::PadVideoTruncateAudio},
        {"WebVttUTF8Format", ContainerReaderProperty::WebVttUTF8Format},
        {"DfxpFragmentDuration", ContainerReaderProperty::DfxpFragmentDuration},
        {"DfxpFrameDuration", ContainerReaderProperty::DfxpFrameDuration},
        {"DfxpTimeScale", ContainerReaderProperty::DfxpTimeScale},
        {"DfxpDropFrame", ContainerReaderProperty::DfxpDropFrame},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek
