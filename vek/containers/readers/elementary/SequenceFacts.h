#pragma once

// Stream facts from a video coding's sequence-level headers. The raw
// stream readers and the QuickTime and MP4 sample descriptions both
// describe a stream from the same parameter sets, so they share these
// functions and cannot disagree on a key or a profile name.
//
// Each function fills what the sequence headers alone tell; facts that
// need the first pictures (the field order of an interlaced stream, the
// reorder depth of MPEG-1/2) are left for the caller. `owner` begins the
// log lines.
#include <vek/containers/readers/elementary/VideoStreamFacts.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/Mpeg4VideoHeaders.h>
#include <vek/elementary/MpegVideoHeaders.h>

namespace Quorvex::Vek::SequenceFacts {

// H.264: format H264, sizes, aspect, chroma, depths, VUI timing and colour,
// reorder depth, profile and level names and codes, scan. The field order
// is progressive for frame-only sequences and unknown otherwise.
VEK_API void DescribeAvc(const AvcSequenceParameterSet& sps, VideoStreamFacts& facts);

// H.265: format H265 and what the set and its VUI state.
VEK_API void DescribeHevc(const char* owner, const HevcSequenceParameterSet& sps, VideoStreamFacts& facts);

// MPEG-4 Visual: the layer, and the visual object's signal type when
// `object` is not null.
VEK_API void DescribeMpeg4Video(const Mpeg4VideoObjectLayer& layer, const Mpeg4VisualObject* object,
                                VideoStreamFacts& facts);

// MPEG-1/2 video. The field order is progressive for a progressive
// sequence and unknown otherwise. -19017 for a forbidden frame rate code.
VEK_API int DescribeMpegVideo(const char* owner, const MpegVideoSequence& sequence, VideoStreamFacts& facts);

} // namespace Quorvex::Vek::SequenceFacts
