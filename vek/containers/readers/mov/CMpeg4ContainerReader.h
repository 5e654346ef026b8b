#pragma once

// The reader of ISO media files (.mp4, .m4a, .m4v, .3gp, fragmented MP4), and QuickTime movies when no QuickTime reader is registered.
// Everything but the claim is CMovieFileReader's: see its header for what
// BeginIndex builds and how samples are timed and edited. Validate scores
// the file's own family MatchScore and the sibling family SiblingScore.
#include <vek/containers/readers/mov/CMovieFileReader.h>

namespace Quorvex::Vek {

class VEK_API CMpeg4ContainerReader : public CMovieFileReader {
public:
    enum : uint32_t { Type = Four("mp4 ") };

    CMpeg4ContainerReader();
    explicit CMpeg4ContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "MPEG-4"; }

protected:
    ~CMpeg4ContainerReader() override;
};

} // namespace Quorvex::Vek
