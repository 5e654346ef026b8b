#include <vek/samples/VideoSample.h>

namespace Quorvex::Vek {

VideoSample VideoSample::Create()
{
    return VideoSample(CVideoSample::Create());
}

VideoSample VideoSample::FromObject(CVideoSample* object)
{
    if (object)
        object->Acquire();
    return VideoSample(object);
}

int VideoSample::SetDuration(int32_t duration) const
{
    return ToVideo() ? ToVideo()->SetDuration(duration) : RESULT_NULL_POINTER;
}

int VideoSample::SetCompositionOffset(int32_t offset) const
{
    return ToVideo() ? ToVideo()->SetCompositionOffset(offset) : RESULT_NULL_POINTER;
}

int32_t VideoSample::GetCompositionOffset() const
{
    return ToVideo() ? ToVideo()->GetCompositionOffset() : 0;
}

int VideoSample::AdjustTime(int32_t delta) const
{
    return ToVideo() ? ToVideo()->AdjustTime(delta) : RESULT_NULL_POINTER;
}

int VideoSample::SetPictureType(int32_t type) const
{
    return ToVideo() ? ToVideo()->SetPictureType(type) : RESULT_NULL_POINTER;
}

int32_t VideoSample::GetPictureType() const
{
    return ToVideo() ? ToVideo()->GetPictureType() : 0;
}

int VideoSample::SetPictureStructure(int32_t structure) const
{
    return ToVideo() ? ToVideo()->SetPictureStructure(structure) : RESULT_NULL_POINTER;
}

int32_t VideoSample::GetPictureStructure() const
{
    return ToVideo() ? ToVideo()->GetPictureStructure() : 0;
}

int VideoSample::SetFrameNumber(int32_t number) const
{
    return ToVideo() ? ToVideo()->SetFrameNumber(number) : RESULT_NULL_POINTER;
}

int32_t VideoSample::GetFrameNumber() const
{
    return ToVideo() ? ToVideo()->GetFrameNumber() : 0;
}

int VideoSample::SetAtom(const ByteArray& atom) const
{
    return ToVideo() ? ToVideo()->SetAtom(atom.ToObject()) : RESULT_NULL_POINTER;
}

ByteArray VideoSample::GetAtom() const
{
    return ByteArray(ToVideo() ? ToVideo()->GetAtom() : nullptr);
}

int VideoSample::SetAtomData(const unsigned char* data, int32_t length) const
{
    return ToVideo() ? ToVideo()->SetAtomData(data, length) : RESULT_NULL_POINTER;
}

const unsigned char* VideoSample::GetAtomData() const
{
    return ToVideo() ? ToVideo()->GetAtomData() : nullptr;
}

int32_t VideoSample::GetAtomLength() const
{
    return ToVideo() ? ToVideo()->GetAtomLength() : 0;
}

} // namespace Quorvex::Vek
