#pragma once

// A writer of QuickTime and ISO base media files for reader tests, fuzz
// seeds and the index bench. Two levels:
//
// - Boxes: any box from a type and a payload, with a 32-bit, 64-bit or
//   to-the-end size, full-box headers, nesting, and finding and patching a
//   box of a built file by its path (to make a valid file lie in one field).
// - Movies: Mp4Movie describes tracks by their samples in decode order
//   (run-length, so a table of a million entries costs one run) and writes
//   ftyp, moov with every sample table, and mdat, or moof fragments. The
//   payload is a recognisable pattern (Mp4SamplePattern), bytes given per
//   sample, or a hole: a file of gigabytes costs no disk when sparse.
//
// Everything is built in memory (Build) or written to a file (WriteFile).
// Sizes that overflow their fields are the caller's business: this writer
// writes what it is told, so that tests can make hostile files.
#include "support/AudioFileBuilder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VekTest {

// How a box states its size: a 32-bit size, size 1 with a 64-bit size
// after the type, or size 0 (the box runs to the end of its parent).
enum class BoxSize { Compact, Large, ToEnd };

// ---------------------------------------------------------------- boxes

// The header of a box whose payload holds `payloadBytes` (the payload
// itself written apart). Compact switches to Large when the size needs it.
Bytes Mp4BoxHeader(const std::string& type, uint64_t payloadBytes, BoxSize size = BoxSize::Compact);
// A box around `payload`. A 'uuid' box carries its 16-byte user type at the
// start of the payload.
Bytes Mp4Box(const std::string& type, const Bytes& payload, BoxSize size = BoxSize::Compact);
// A full box: version and 24-bit flags lead the payload.
Bytes Mp4FullBox(const std::string& type, uint8_t version, uint32_t flags, const Bytes& payload,
                 BoxSize size = BoxSize::Compact);
// A box whose payload is `children`, one after the other.
Bytes Mp4Container(const std::string& type, const std::vector<Bytes>& children, BoxSize size = BoxSize::Compact);
Bytes Concat(const std::vector<Bytes>& parts);

// Where a box of a built file is: `offset` of its first byte, `headerSize`
// (8, or 16 with a 64-bit size; a 'uuid' user type counts as payload) and
// its whole `size`.
struct Mp4BoxSpan {
    size_t offset = 0;
    size_t headerSize = 0;
    uint64_t size = 0;
    size_t PayloadOffset() const { return offset + headerSize; }
};

// The box at `path`, nullopt when there is none: "moov/trak[1]/mdia/mdhd"
// is the mdhd of the second track ("[n]" picks the n-th of that type, 0
// first). The walk enters the children of plain containers and of 'stsd',
// 'dref' and 'meta' past their full-box fields; it stops at a box whose
// size does not fit its parent.
std::optional<Mp4BoxSpan> FindMp4Box(const Bytes& file, const std::string& path);
// Rewrites the declared size of `box`, in its 32-bit or 64-bit field.
void SetMp4BoxSize(Bytes& file, const Mp4BoxSpan& box, uint64_t size);
// Writes `value` big-endian over `width` bytes at `offset`.
void PutBigEndian(Bytes& file, size_t offset, uint64_t value, int width);

// ---------------------------------------------------------------- sample entries

// 'avcC' with one SPS and one PPS (NAL units without start codes).
Bytes Mp4AvcConfiguration(const Bytes& sps, const Bytes& pps);
// 'esds' of an MPEG-4 audio track carrying an AudioSpecificConfig.
Bytes Mp4AacEsds(const Bytes& audioSpecificConfig, uint32_t averageBitrate = 128000);
// A visual sample entry ('avc1', 'hvc1', 'mp4v' ...) with its child boxes.
Bytes Mp4VisualSampleEntry(const std::string& format, uint16_t width, uint16_t height,
                           const std::vector<Bytes>& children = {});
// A version-0 sound sample entry ('mp4a', 'twos', 'sowt' ...).
Bytes Mp4AudioSampleEntry(const std::string& format, uint16_t channels, uint16_t sampleBits, uint32_t rate,
                          const std::vector<Bytes>& children = {});

// 'avc1' of 1920x1080 High profile level 4.2 with an SPS and PPS that
// libx264 wrote.
Bytes Mp4Avc1080pSampleEntry();
// 'mp4a' of AAC-LC with the AudioSpecificConfig of `channels` and `rate`.
Bytes Mp4AacSampleEntry(uint16_t channels, uint32_t rate);

// ---------------------------------------------------------------- movies

// `count` consecutive samples alike, in decode order.
struct Mp4SampleRun {
    uint64_t count = 1;
    uint32_t size = 0;
    uint32_t duration = 0;           // in the track's time scale
    int32_t compositionOffset = 0;   // presentation minus decode time
    bool sync = true;
};

// One edit-list entry: `duration` in the movie's time scale, `mediaTime`
// in the track's (-1: an empty edit), `rate` 16.16.
struct Mp4Edit {
    int64_t duration = 0;
    int64_t mediaTime = 0;
    int32_t rate = 0x10000;
};

struct Mp4Track {
    std::string handler = "vide";    // 'vide', 'soun', 'text', 'tmcd' ...
    uint32_t timescale = 1000;
    uint16_t width = 0;              // tkhd presentation size, whole pixels
    uint16_t height = 0;
    std::vector<Bytes> sampleEntries; // stsd entries, each a whole box
    std::vector<Mp4SampleRun> samples;
    uint32_t samplesPerChunk = 1;
    std::vector<Mp4Edit> edits;      // none: no 'edts'
    // Bytes of each sample, when the pattern will not do; sizes must match.
    std::vector<Bytes> data;
    std::vector<Bytes> extraTrak;    // after tkhd and edts
    std::vector<Bytes> extraStbl;    // after the sample tables
    // In place of the vmhd, smhd or nmhd the handler calls for ('gmhd' of
    // QuickTime timecode and text tracks).
    std::optional<Bytes> mediaHeader;
    bool co64 = false;               // 64-bit chunk offsets even when 32 bits hold them
    bool version1 = false;           // 64-bit times in tkhd, mdhd and elst

    // Appends one sample (merged into the last run when alike).
    Mp4Track& Add(uint32_t size, uint32_t duration, int32_t compositionOffset = 0, bool sync = true);
    Mp4Track& Add(const Mp4SampleRun& run);
    // Both walk the runs: count apart when adding samples one by one.
    uint64_t SampleCount() const;
    uint64_t MediaDuration() const;
};

// A closed group of pictures in decode order, as an encoder with B
// pictures writes it: the sync picture, then each anchor (P) followed by
// the B pictures shown before it. Offsets count frames (presentation minus
// decode position); with B pictures everything is shown one frame late so
// that no offset is negative.
enum class Mp4Picture { Sync, Anchor, B };
struct Mp4GopPicture {
    Mp4Picture kind = Mp4Picture::Sync;
    int32_t compositionFrames = 0;
};
std::vector<Mp4GopPicture> Mp4Gop(uint32_t frames, uint32_t bFrames);

enum class Mp4Payload {
    Pattern, // Mp4SamplePattern, or the track's data
    Sparse,  // zeros; a hole in a file
};

struct Mp4Movie {
    // The major brand; nullopt writes no 'ftyp' (QuickTime before 'ftyp').
    std::optional<std::string> brand = std::string("isom");
    std::vector<std::string> compatibleBrands = {"isom", "iso2", "avc1", "mp41"};
    // QuickTime handler boxes: 'mhlr' in mdia, a 'dhlr' one in minf.
    bool quickTime = false;
    uint32_t timescale = 1000;
    bool moovFirst = true;
    BoxSize mdatSize = BoxSize::Compact;
    bool version1 = false;           // 64-bit times in mvhd
    Mp4Payload payload = Mp4Payload::Pattern;
    // Above 0: the moov holds empty sample tables and 'mvex', and each
    // track's samples follow in moof/mdat pairs of this many samples.
    uint32_t fragmentSamples = 0;
    std::vector<Bytes> extraTopLevel; // after 'ftyp'
    std::vector<Bytes> extraMoov;     // after the tracks
    std::vector<Mp4Track> tracks;     // track IDs are positions + 1

    Bytes Build() const;
    // Writes the file; a sparse payload is skipped over, not written.
    bool WriteFile(const std::string& path) const;
    // Bytes before the first sample: ftyp and the boxes after it, the moov
    // when it comes first, the first moof in a fragmented file, and the
    // mdat header.
    uint64_t HeaderBytes() const;
};

// The index a fragmenting writer appends last: an 'mfra' with one 'tfra'
// per track (1 to `tracks`) naming every top-level 'moof' of `file`, and
// the 'mfro' that lets a reader find it from the end. Append it to the file.
Bytes Mp4RandomAccessIndex(const Bytes& file, uint32_t tracks);

// Byte `at` of sample `sample` (0 first) of track `trackId` in a Pattern
// payload, and a whole sample of it.
uint8_t Mp4PatternByte(uint32_t trackId, uint64_t sample, uint64_t at);
Bytes Mp4SamplePattern(uint32_t trackId, uint64_t sample, uint32_t size);

} // namespace VekTest
