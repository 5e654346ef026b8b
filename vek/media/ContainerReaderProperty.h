#pragma once

// Settings a container reader accepts before or while it opens a container.
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API ContainerReaderProperty {
public:
    ContainerReaderProperty() = delete;

    static const char* const StlFrameDuration; // "stl.frame_duration"
    static const char* const StlTimeScale; // "stl.time_scale"
    static const char* const StlDropFrame; // "stl.drop_frame"
    static const char* const DirectShowAlwaysUseVirtualFlip; // "direct_show.always_use_virtual_flip"
    static const char* const DirectShowForceDecoder; // "direct_show.force_decoder"
    static const char* const MkvRoundFrameRate; // "mkv.round_frame_rate"
    static const char* const MovVideoSampleDescriptionIndex; // "mov.video_sample_description_index"
    // The constant's name is misspelled ("Ingnore"); it stays so for source
    // compatibility with hosts that use it.
    static const char* const ZifoIngnoreMarkinMarkout; // "zifo.ignore.markin.markout"
    static const char* const ReadTimeout; // "read_timeout"
    static const char* const VideoFormat; // "video_format"
    static const char* const VideoReference; // "video_reference"
    static const char* const PadVideoTruncateAudio; // "pad_video_or_truncate_audio"
    static const char* const WebVttUTF8Format; // "webvtt.utf8_format"
    static const char* const DfxpFragmentDuration; // "dfxp.fragment_duration"
    static const char* const DfxpFrameDuration; // "dfxp.frame_duration"
    static const char* const DfxpTimeScale; // "dfxp.time_scale"
    static const char* const DfxpDropFrame; // "dfxp.drop_frame"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek
