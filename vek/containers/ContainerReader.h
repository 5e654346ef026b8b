#pragma once

// Public wrapper of CContainerReader: open a file or context (the reader is
// chosen by probing the registered readers, see ContainerReaderInventory),
// index it, pull samples track by track and fetch their bytes.
//
// Samples come back adopted in the out wrapper; at the end of a track the
// call succeeds and the wrapper is null.
#include <vek/containers/CContainerReader.h>
#include <vek/containers/Container.h>
#include <vek/samples/AudioSample.h>
#include <vek/samples/SubtitleSample.h>
#include <vek/samples/VideoSample.h>

namespace Quorvex::Vek {

class VEK_API ContainerReader : public Container {
public:
    ContainerReader() = default;
    // Adopts the caller's reference.
    ContainerReader(CContainerReader* object) : BaseObject(object) {}

    // A wrapper sharing `object` (its count goes up by one).
    static ContainerReader FromObject(CContainerReader* object);

    // Null when no registered reader accepts the file (logged).
    static ContainerReader Create(const char* path, unsigned int flags = 0);
    static ContainerReader Create(const ContainerContext& context, unsigned int flags = 0);

    CContainerReader* ToReader() const { return static_cast<CContainerReader*>(ToObject()); }

    int BeginIndex() const;
    int EndIndex() const;

    int ReadVideoSample(int32_t track, VideoSample& sample) const;
    int ReadAudioSample(int32_t track, AudioSample& sample) const;
    int ReadSubtitleSample(int32_t track, SubtitleSample& sample) const;
    // Replace a sample's container range by its bytes in memory.
    int ReadVideoData(int32_t track, const VideoSample& sample) const;
    int ReadAudioData(int32_t track, const AudioSample& sample) const;
    int ReadSubtitleData(int32_t track, const SubtitleSample& sample) const;

    int32_t GetReadTimeout() const;
    int SetReadTimeout(int32_t milliseconds) const;
};

} // namespace Quorvex::Vek
