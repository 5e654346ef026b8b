#pragma once

// Registration of the library's container readers. A host registers the
// readers it wants, in the order it wants them probed: each call appends
// the reader class's factory to the reader inventory, and probing
// (CContainerReaderInventory::Create) asks the factories in that order.
//
// `label` is the host's name for the registration ("plug-in 'Broadcast
// import'", a build tag ...), may be null, and is kept with the factory:
// it is logged at level 4 when the factory is registered and each time it
// makes a reader, so a log shows which registration produced a reader.
//
// Each call returns 0 or a negative code (-19002 without memory). Calling
// one twice registers a second factory that probing never reaches first.
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API ContainerReaderInventory {
public:
    ContainerReaderInventory() = delete;

    // RIFF WAVE, RF64 and broadcast wave (ContainerFormat::WAV).
    static int AddWavContainerReader(const char* label);
    // Sony Wave64 (ContainerFormat::WAV64).
    static int AddWav64ContainerReader(const char* label);
    // AIFF (ContainerFormat::AIFF).
    static int AddAiffContainerReader(const char* label);
    // QuickTime movies (ContainerFormat::MOV).
    static int AddMovContainerReader(const char* label);
    // ISO media files: MP4, M4A, 3GP, fragmented MP4 (ContainerFormat::MPEG4).
    static int AddMpeg4ContainerReader(const char* label);
    // Raw MPEG-4 visual streams, .m4v (ContainerFormat::Video).
    static int AddMpeg4VideoContainerReader(const char* label);
    // Raw H.264 streams with start codes (ContainerFormat::MPEG4_AVC).
    static int AddMpeg4AvcContainerReader(const char* label);
    // Raw HEVC elementary streams (ContainerFormat::MPEG_HEVC).
    static int AddMpegHevcContainerReader(const char* label);
    // Raw MPEG-1 video streams (ContainerFormat::MPEG1_VIDEO).
    static int AddMpeg1VideoContainerReader(const char* label);
    // Raw MPEG-2 video streams (ContainerFormat::MPEG2_VIDEO).
    static int AddMpeg2VideoContainerReader(const char* label);
    // Raw AAC in ADTS framing (ContainerFormat::AAC).
    static int AddAacContainerReader(const char* label);
    // Raw AC-3 and E-AC-3 (ContainerFormat::AC3).
    static int AddAc3ContainerReader(const char* label);
    // Raw MPEG audio, layers I-III (ContainerFormat::MPEG_AUDIO).
    static int AddMpegAudioContainerReader(const char* label);
};

} // namespace Quorvex::Vek
