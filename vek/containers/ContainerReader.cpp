#include <vek/containers/ContainerReader.h>

namespace Quorvex::Vek {

ContainerReader ContainerReader::FromObject(CContainerReader* object)
{
    if (object)
        object->Acquire();
    return ContainerReader(object);
}

ContainerReader ContainerReader::Create(const char* path, unsigned int flags)
{
    RObject<CString> text(path ? CString::Create(path) : nullptr);
    return text ? ContainerReader(CContainerReader::Create(text, flags)) : ContainerReader();
}

ContainerReader ContainerReader::Create(const ContainerContext& context, unsigned int flags)
{
    return ContainerReader(CContainerReader::Create(context.ToObject(), flags));
}

int ContainerReader::BeginIndex() const
{
    return ToReader() ? ToReader()->BeginIndex() : RESULT_NULL_POINTER;
}

int ContainerReader::EndIndex() const
{
    return ToReader() ? ToReader()->EndIndex() : RESULT_NULL_POINTER;
}

namespace {

// Runs `read` into a raw out pointer and hands the sample to `sample`.
template <typename Wrapper, typename Raw, typename Read>
int ReadInto(CContainerReader* reader, Wrapper& sample, Read read)
{
    sample = Wrapper();
    if (!reader)
        return RESULT_NULL_POINTER;
    Raw* made = nullptr;
    const int result = read(made);
    sample = Wrapper(made);
    return result;
}

} // namespace

int ContainerReader::ReadVideoSample(int32_t track, VideoSample& sample) const
{
    return ReadInto<VideoSample, CVideoSample>(ToReader(), sample, [&](CVideoSample*& made) {
        return ToReader()->ReadVideoSample(track, made);
    });
}

int ContainerReader::ReadAudioSample(int32_t track, AudioSample& sample) const
{
    return ReadInto<AudioSample, CAudioSample>(ToReader(), sample, [&](CAudioSample*& made) {
        return ToReader()->ReadAudioSample(track, made);
    });
}

int ContainerReader::ReadSubtitleSample(int32_t track, SubtitleSample& sample) const
{
    return ReadInto<SubtitleSample, CSubtitleSample>(ToReader(), sample, [&](CSubtitleSample*& made) {
        return ToReader()->ReadSubtitleSample(track, made);
    });
}

int ContainerReader::ReadVideoData(int32_t track, const VideoSample& sample) const
{
    return ToReader() ? ToReader()->ReadVideoData(track, sample.ToVideo()) : RESULT_NULL_POINTER;
}

int ContainerReader::ReadAudioData(int32_t track, const AudioSample& sample) const
{
    return ToReader() ? ToReader()->ReadAudioData(track, sample.ToAudio()) : RESULT_NULL_POINTER;
}

int ContainerReader::ReadSubtitleData(int32_t track, const SubtitleSample& sample) const
{
    return ToReader() ? ToReader()->ReadSubtitleData(track, sample.ToSubtitle()) : RESULT_NULL_POINTER;
}

int32_t ContainerReader::GetReadTimeout() const
{
    return ToReader() ? ToReader()->GetReadTimeout() : 0;
}

int ContainerReader::SetReadTimeout(int32_t milliseconds) const
{
    return ToReader() ? ToReader()->SetReadTimeout(milliseconds) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
