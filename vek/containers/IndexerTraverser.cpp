#include <vek/containers/IndexerTraverser.h>

namespace Quorvex::Vek {

IndexerTraverser IndexerTraverser::FromObject(CIndexerTraverser* object)
{
    if (object)
        object->Acquire();
    return IndexerTraverser(object);
}

int IndexerTraverser::Seek(double seconds, int32_t flags) const
{
    return ToObject() ? ToObject()->Seek(seconds, flags) : RESULT_NULL_POINTER;
}

int IndexerTraverser::ReadVideoSample(int32_t track, VideoSample& sample) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CVideoSample* read = nullptr;
    const int result = ToObject()->ReadVideoSample(track, read);
    sample = VideoSample(read);
    return result;
}

int IndexerTraverser::ReadAudioSample(int32_t track, AudioSample& sample) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CAudioSample* read = nullptr;
    const int result = ToObject()->ReadAudioSample(track, read);
    sample = AudioSample(read);
    return result;
}

int IndexerTraverser::ReadSubtitleSample(int32_t track, SubtitleSample& sample) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CSubtitleSample* read = nullptr;
    const int result = ToObject()->ReadSubtitleSample(track, read);
    sample = SubtitleSample(read);
    return result;
}

int IndexerTraverser::GetLongGop(int32_t track, bool& longGop) const
{
    longGop = false;
    return ToObject() ? ToObject()->GetLongGop(track, longGop) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
