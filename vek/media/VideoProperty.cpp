#include <vek/media/VideoProperty.h>

namespace Quorvex::Vek {

const char* const VideoProperty::ActiveFormatDescriptor = "active_format_descriptor";
const char* const VideoProperty::AlphaChannel = "alpha_channel";
const char* const VideoProperty::AvidCompression = "ares.compression";
const char* const VideoProperty::H264Profile = "h264.profile";
const char* const VideoProperty::H264Level = "h264.level";
const char* const VideoProperty::H264Structure = "h264.structure";
const char* const VideoProperty::MdpmDateTime = "mdpm.date_time";
const char* const VideoProperty::MdpmMakeModel = "mdpm.make_model";
const char* const VideoProperty::MpegClosedGop = "mpgv.closed_gop";
const char* const VideoProperty::MpegIdenticalGop = "mpgv.identical_gop";
const char* const VideoProperty::MpegMaxGopLength = "mpgv.max_gop_length";
const char* const VideoProperty::MpegTimeCode = "mpgv.timecode";
const char* const VideoProperty::MpegVbvBufferSize = "mpgv.vbv_buffer_size";
const char* const VideoProperty::Mpeg2ProfileAndLevel = "mp2v.profile_and_level";
const char* const VideoProperty::Mpeg4ProfileAndLevel = "mp4v.profile_and_level";
const char* const VideoProperty::Mpeg4CompressorName = "mp4v.compressorname";
const char* const VideoProperty::ProResEncoder = "icpf.encoder";
const char* const VideoProperty::ForceKeyFrame = "vsmp.forceKeyFrame";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList VideoProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"ActiveFormatDescriptor", VideoProperty::ActiveFormatDescriptor},
        {"AlphaChannel", VideoProperty::AlphaChannel},
        {"AvidCompression", VideoProperty::AvidCompression},
        {"H264Profile", VideoProperty::H264Profile},
        {"H264Level", VideoProperty::H264Level},
        {"H264Structure", VideoProperty::H264Structure},
        {"MdpmDateTime", VideoProperty::MdpmDateTime},
        {"MdpmMakeModel", VideoProperty::MdpmMakeModel},
        {"MpegClosedGop", VideoProperty::MpegClosedGop},
        {"MpegIdenticalGop", VideoProperty::MpegIdenticalGop},
        {"MpegMaxGopLength", VideoProperty::MpegMaxGopLength},
        {"MpegTimeCode", VideoProperty::MpegTimeCode},
        {"MpegVbvBufferSize", VideoProperty::MpegVbvBufferSize},
        {"Mpeg2ProfileAndLevel", VideoProperty::Mpeg2ProfileAndLevel},
        {"Mpeg4ProfileAndLevel", VideoProperty::Mpeg4ProfileAndLevel},
        {"Mpeg4CompressorName", VideoProperty::Mpeg4CompressorName},
        {"ProResEncoder", VideoProperty::ProResEncoder},
        {"ForceKeyFrame", VideoProperty::ForceKeyFrame},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek
