#pragma once

// The metadata tags that players and encoders put around raw audio frames:
// ID3v2 at the start of a file (one or more, each with its own size), and
// ID3v1 ("TAG", 128 bytes) and APEv2 (a 32-byte footer "APETAGEX") at the
// end. Readers of raw frame files skip them so that their bytes are never
// searched for frames. The tags' contents are not read.
#include <cstdint>

#include <vek/io/CStream.h>

namespace Quorvex::Vek::AudioFileTags {

enum : int32_t {
    Id3v2HeaderBytes = 10,
    Id3v1Bytes = 128,
    ApeFooterBytes = 32,
    // Tags in a row a file may start with before the walk gives up.
    MaxLeadingTags = 8,
};

// The bytes the ID3v2 tags at the start of `stream` (of `length` bytes)
// take: 0 without a tag. -19017 with a level-1 line naming the size when a
// tag's size is not a syncsafe integer or runs past the end of the file;
// the stream's code when a read fails.
VEK_API int MeasureLeadingTags(const char* owner, CStream* stream, int64_t length, int64_t& bytes);

// The bytes the ID3v1 and APEv2 tags take at the end of [start, end) of
// `stream`: 0 without one, and 0 for a range that ends at INT64_MAX (a
// stream that cannot tell its length). A tag that does not fit the range
// is not a tag.
VEK_API int MeasureTrailingTags(CStream* stream, int64_t start, int64_t end, int64_t& bytes);

} // namespace Quorvex::Vek::AudioFileTags
