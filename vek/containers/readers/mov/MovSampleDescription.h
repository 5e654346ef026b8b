#pragma once

// One entry of a track's 'stsd' box turned into the track's description.
// The entry is a MovBox whose type is the format code ('avc1', 'twos' ...);
// its payload starts with the fixed fields of its media kind, followed by
// child atoms ('avcC', 'esds', 'pasp', 'wave', 'chan' ...).
//
// Results of the three readers: 0 with the description filled; 1 for a
// format code this library does not describe (logged at a low level; the
// caller skips the track); RESULT_FORMAT_ERROR (logged, naming the atom
// and the value) for an entry that is truncated or whose configuration
// atoms contradict it; RESULT_ARGUMENT_NULL; RESULT_OUT_OF_MEMORY.
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/media/CAudioProperties.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/media/CVideoProperties.h>

namespace Quorvex::Vek {

// The facts the track reader needs to cut and time audio samples.
struct MovAudioLayout {
    bool pcm = false; // samples are PCM frames the reader cuts into packets
    uint32_t bytesPerFrame = 0; // PCM: bytes of one frame of all channels
    uint32_t framesPerPacket = 0; // compressed: frames per access unit when fixed, 0 when unknown
};

// Video entries: H.264 ('avc1', 'avc3'), H.265 ('hvc1', 'hev1'), MPEG-4
// Visual and MPEG-1/2 ('mp4v' by its object type, the QuickTime MPEG-2
// codes), ProRes, DNxHD/DNxHR, Motion JPEG and the uncompressed layouts.
// `quickTime` is true for a QuickTime file.
VEK_API int ReadVideoDescription(const MovBox& entry, bool quickTime, CVideoProperties* video);

// Audio entries: AAC and MPEG audio ('mp4a', '.mp3'), AC-3, E-AC-3, ALAC
// and PCM in its QuickTime and ISO forms, G.711. QuickTime files use the
// version 1 and 2 sound description layouts; ISO files do not.
VEK_API int ReadAudioDescription(const MovBox& entry, bool quickTime, CAudioProperties* audio,
                                 MovAudioLayout& layout);

// Subtitle entries: CEA-608/708 captions, 3GPP and QuickTime timed text,
// WebVTT.
VEK_API int ReadSubtitleDescription(const MovBox& entry, CSubtitleProperties* subtitle);

} // namespace Quorvex::Vek
