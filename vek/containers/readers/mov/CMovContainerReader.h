#pragma once

// The reader of QuickTime movies (.mov, .qt), and ISO files when no MP4 reader is registered.
// Everything but the claim is CMovieFileReader's: see its header for what
// BeginIndex builds and how samples are timed and edited. Validate scores
// the file's own family MatchScore and the sibling family SiblingScore.
#include <vek/containers/readers/mov/CMovieFileReader.h>

namespace Quorvex::Vek {

class VEK_API CMovContainerReader : public CMovieFileReader {
public:
    enum : uint32_t { Type = Four("mov ") };

    CMovContainerReader();
    explicit CMovContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "QuickTime"; }

protected:
    ~CMovContainerReader() override;
};

} // namespace Quorvex::Vek
