#include <vek/media/CSubtitleProperties.h>

#include <new>

#include <vek/media/CodeBookProperty.h>
#include <vek/media/MediaProperty.h>

namespace Quorvex::Vek {

const IProperties::Accessor CSubtitleProperties::Accessors[] = {
    {MediaProperty::Mpeg2FormatIdentifier, "MPEG-2 Format Identifier", &IProperties::GetUInt32, IProperties::TXT},
    {MediaProperty::Mpeg2TransportStreamPid, "MPEG-2 Transport Stream PID", &IProperties::GetUInt16, IProperties::TXT},
    {CodeBookProperty::SubtitleCaptionChannel, "Caption Channel", &IProperties::GetByte, IProperties::TXT},
    {CodeBookProperty::SubtitleBitmapWidth, "Subtitle Bitmap Width", &IProperties::GetUInt32, IProperties::TXT},
    {CodeBookProperty::SubtitleBitmapHeight, "Subtitle Bitmap Height", &IProperties::GetUInt32, IProperties::TXT},
    {nullptr, nullptr, nullptr, 0},
};

CSubtitleProperties::CSubtitleProperties() : CMediaProperties(Type) {}

CSubtitleProperties::CSubtitleProperties(const CSubtitleProperties& other) = default;

CSubtitleProperties::~CSubtitleProperties() = default;

CMediaProperties* CSubtitleProperties::Clone() const
{
    return CloneChecked(new (fallible) CSubtitleProperties(*this));
}

const IProperties::Accessor* CSubtitleProperties::GetPropertyAccessors() const
{
    return Accessors;
}

} // namespace Quorvex::Vek
