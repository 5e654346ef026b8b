#pragma once

// Public one-call analysis of a container: the reader is chosen by probing,
// its headers read and the whole index pass run on the caller's thread, so
// that every count, duration and bit rate is final when Analyze returns.
// An analyzer is an Indexer whose pass has run, with its reader at hand.
#include <vek/containers/ContainerReader.h>
#include <vek/containers/Indexer.h>

namespace Quorvex::Vek {

class VEK_API ContainerAnalyzer : public Indexer {
public:
    ContainerAnalyzer() = default;
    // Adopts the caller's reference.
    ContainerAnalyzer(CIndexer* object) : BaseObject(object), Indexer(object) {}

    // Analyzes the file at `path` (a path, as ContainerReader::Create
    // takes it). A null analyzer on failure, with the reason in *result
    // when given: -19001 when no registered reader accepts the file, the
    // reader's or the pass's code otherwise.
    static ContainerAnalyzer Analyze(const char* path, int* result = nullptr);
    // Analyzes an open reader whose headers have not been read yet.
    static ContainerAnalyzer Analyze(const ContainerReader& reader, int* result = nullptr);

    ContainerReader GetReader() const;
    const char* GetFormatName() const;
    // Samples of a track of each kind; 0 for a track that does not exist.
    int64_t GetVideoSampleCount(int32_t track) const;
    int64_t GetAudioSampleCount(int32_t track) const;
    int64_t GetSubtitleSampleCount(int32_t track) const;
};

} // namespace Quorvex::Vek
