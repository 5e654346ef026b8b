#pragma once

// The tag an encoder leaves in the first frame of an MPEG audio stream in
// place of audio: Xing ("Xing" for variable, "Info" for constant bit rate)
// or Fraunhofer's VBRI, with the frame and byte counts and seek table of the
// stream, and LAME's extension of the Xing tag (encoder delay and padding,
// which a reader trims from the decoded ends). Readers of raw .mp3 use it
// for duration and seeking; the frame itself carries no audio.
//
// Parse returns 0 with a tag, 1 when the frame holds none (an ordinary
// audio frame), RESULT_FORMAT_ERROR (-19017) with a log line when the frame
// header is refused (free format among them) or a tag runs past its frame,
// RESULT_ARGUMENT_NULL. Nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/MpegAudioFrameHeader.h>

namespace Quorvex::Vek {

struct VEK_API MpegAudioInfoTag {
    enum Kind : uint8_t { Xing, Info, Vbri };
    enum : int32_t { XingTocEntries = 100 };

    Kind kind = Xing;
    MpegAudioFrameHeader frame; // the tag's own frame
    bool hasFrames = false;
    uint32_t frames = 0; // audio frames, the tag's frame not counted
    bool hasBytes = false;
    uint32_t bytes = 0; // the stream, the tag's frame included
    bool hasToc = false;
    uint8_t toc[XingTocEntries] = {}; // Xing: byte position / 256 at each percent of the duration
    bool hasQuality = false;
    uint32_t quality = 0;

    // VBRI: its seek table stays in the frame, tocEntries entries of
    // tocEntryBytes (1..4) at tocOffset, each scaled by tocScale.
    uint16_t vbriVersion = 0;
    uint16_t vbriDelay = 0;
    uint16_t tocEntries = 0;
    uint16_t tocScale = 0;
    uint16_t tocEntryBytes = 0;
    uint16_t framesPerTocEntry = 0;
    int32_t tocOffset = 0;

    // LAME's extension (also written by other encoders that follow it).
    bool hasLame = false;
    char encoder[10] = {}; // nine characters, terminated
    uint8_t lameRevision = 0;
    uint8_t vbrMethod = 0;
    int32_t lowpassHz = 0;
    uint16_t encoderDelay = 0; // samples the decoder adds at the start
    uint16_t encoderPadding = 0; // samples appended at the end
    uint32_t musicLength = 0; // bytes of audio frames, the tag's frame included
    uint16_t musicCrc = 0;
    uint16_t tagCrc = 0;
    bool tagCrcMatches = false; // the tag's CRC over the frame's leading bytes

    // `bytes` holds the stream's first frame (or at least its first
    // `size` bytes; a tag that does not fit in them is refused).
    static int Parse(const uint8_t* bytes, size_t size, MpegAudioInfoTag& out);

    // Audio samples after trimming delay and padding; 0 without a frame
    // count. Never negative.
    int64_t PlayableSamples() const;
};

} // namespace Quorvex::Vek
