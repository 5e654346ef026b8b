#pragma once

// Public wrapper of CIndexerTraverser. Calls forward and return the
// cursor's results unchanged; a null wrapper answers -19001 and false.
// Samples read come back in wrappers that own their reference.
#include <vek/containers/CIndexerTraverser.h>
#include <vek/core/BaseObject.h>
#include <vek/samples/AudioSample.h>
#include <vek/samples/SubtitleSample.h>
#include <vek/samples/VideoSample.h>

namespace Quorvex::Vek {

class VEK_API IndexerTraverser : public Object<CIndexerTraverser> {
public:
    IndexerTraverser() = default;
    // Adopts the caller's reference.
    IndexerTraverser(CIndexerTraverser* object) : BaseObject(object), Object<CIndexerTraverser>(object) {}
    // A wrapper sharing `object` (its count goes up by one).
    static IndexerTraverser FromObject(CIndexerTraverser* object);

    int Seek(double seconds, int32_t flags) const;
    int ReadVideoSample(int32_t track, VideoSample& sample) const;
    int ReadAudioSample(int32_t track, AudioSample& sample) const;
    int ReadSubtitleSample(int32_t track, SubtitleSample& sample) const;
    int GetLongGop(int32_t track, bool& longGop) const;
};

} // namespace Quorvex::Vek
