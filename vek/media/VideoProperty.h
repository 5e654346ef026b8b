#pragma once

// Keys of video descriptions: codec profiles, GOP structure, camera metadata
// and per-sample requests.
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API VideoProperty {
public:
    VideoProperty() = delete;

    static const char* const ActiveFormatDescriptor; // "active_format_descriptor"
    static const char* const AlphaChannel; // "alpha_channel"
    static const char* const AvidCompression; // "ares.compression"
    static const char* const H264Profile; // "h264.profile"
    static const char* const H264Level; // "h264.level"
    static const char* const H264Structure; // "h264.structure"
    static const char* const MdpmDateTime; // "mdpm.date_time"
    static const char* const MdpmMakeModel; // "mdpm.make_model"
    static const char* const MpegClosedGop; // "mpgv.closed_gop"
    static const char* const MpegIdenticalGop; // "mpgv.identical_gop"
    static const char* const MpegMaxGopLength; // "mpgv.max_gop_length"
    static const char* const MpegTimeCode; // "mpgv.timecode"
    static const char* const MpegVbvBufferSize; // "mpgv.vbv_buffer_size"
    static const char* const Mpeg2ProfileAndLevel; // "mp2v.profile_and_level"
    static const char* const Mpeg4ProfileAndLevel; // "mp4v.profile_and_level"
    static const char* const Mpeg4CompressorName; // "mp4v.compressorname"
    static const char* const ProResEncoder; // "icpf.encoder"
    static const char* const ForceKeyFrame; // "vsmp.forceKeyFrame"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek
