#include <vek/containers/ContainerReaderInventory.h>

#include <vek/components/CInstanceFactory.h>
#include <vek/containers/CContainerReaderInventory.h>
#include <vek/containers/readers/aac/CAacContainerReader.h>
#include <vek/containers/readers/ac3/CAc3ContainerReader.h>
#include <vek/containers/readers/aiff/CAiffContainerReader.h>
#include <vek/containers/readers/mpeg4video/CMpeg4VideoContainerReader.h>
#include <vek/containers/readers/avc/CMpeg4AvcContainerReader.h>
#include <vek/containers/readers/mov/CMovContainerReader.h>
#include <vek/containers/readers/mov/CMpeg4ContainerReader.h>
#include <vek/containers/readers/hevc/CMpegHevcContainerReader.h>
#include <vek/containers/readers/mpegvideo/CMpeg1VideoContainerReader.h>
#include <vek/containers/readers/mpegvideo/CMpeg2VideoContainerReader.h>
#include <vek/containers/readers/mpegaudio/CMpegAudioContainerReader.h>
#include <vek/containers/readers/wav/CWavContainerReader.h>
#include <vek/containers/readers/wav64/CWav64ContainerReader.h>
#include <vek/core/CString.h>
#include <vek/media/ContainerFormat.h>

namespace Quorvex::Vek {

namespace {

// A reader factory that keeps the host's label for the log.
template <typename Reader>
class CLabelledReaderFactory : public CInstanceFactory<Reader> {
public:
    CLabelledReaderFactory(uint32_t id, CString* label)
        : CInstanceFactory<Reader>(id), m_label(RObject<CString>::FromObject(label))
    {
    }

    CContainerReader* CreateInstance() override
    {
        CContainerReader* reader = CInstanceFactory<Reader>::CreateInstance();
        if (reader)
            Log(LogLevel::Detail, "ContainerReaderInventory: '%s' made a reader of %s\n", GetLabel(),
                reader->GetFormatName());
        return reader;
    }

    const char* GetLabel() const { return m_label ? m_label->GetChars() : ""; }

protected:
    ~CLabelledReaderFactory() override = default;

private:
    RObject<CString> m_label;
};

template <typename Reader>
int AddReader(uint32_t id, const char* label)
{
    RObject<CString> text;
    if (label) {
        text = RObject<CString>(CString::Create(label));
        if (!text) {
            Log(LogLevel::Error, "ContainerReaderInventory: no memory for the label of a %s factory\n",
                ContainerFormat::GetName(id));
            return RESULT_OUT_OF_MEMORY;
        }
    }
    RObject<CLabelledReaderFactory<Reader>> factory(new (fallible) CLabelledReaderFactory<Reader>(id, text));
    if (!factory) {
        Log(LogLevel::Error, "ContainerReaderInventory: no memory for a %s factory\n", ContainerFormat::GetName(id));
        return RESULT_OUT_OF_MEMORY;
    }
    const int result = CContainerReaderInventory::AddFactory(factory);
    if (result >= 0)
        Log(LogLevel::Detail, "ContainerReaderInventory: registered the %s reader as '%s'\n",
            ContainerFormat::GetName(id), factory->GetLabel());
    return result;
}

} // namespace

int ContainerReaderInventory::AddWavContainerReader(const char* label)
{
    return AddReader<CWavContainerReader>(ContainerFormat::WAV, label);
}

int ContainerReaderInventory::AddWav64ContainerReader(const char* label)
{
    return AddReader<CWav64ContainerReader>(ContainerFormat::WAV64, label);
}

int ContainerReaderInventory::AddAiffContainerReader(const char* label)
{
    return AddReader<CAiffContainerReader>(ContainerFormat::AIFF, label);
}

int ContainerReaderInventory::AddMovContainerReader(const char* label)
{
    return AddReader<CMovContainerReader>(ContainerFormat::MOV, label);
}

int ContainerReaderInventory::AddMpeg4ContainerReader(const char* label)
{
    return AddReader<CMpeg4ContainerReader>(ContainerFormat::MPEG4, label);
}

int ContainerReaderInventory::AddMpeg4VideoContainerReader(const char* label)
{
    return AddReader<CMpeg4VideoContainerReader>(ContainerFormat::Video, label);
}

int ContainerReaderInventory::AddMpeg4AvcContainerReader(const char* label)
{
    return AddReader<CMpeg4AvcContainerReader>(ContainerFormat::MPEG4_AVC, label);
}

int ContainerReaderInventory::AddMpegHevcContainerReader(const char* label)
{
    return AddReader<CMpegHevcContainerReader>(ContainerFormat::MPEG_HEVC, label);
}

int ContainerReaderInventory::AddMpeg1VideoContainerReader(const char* label)
{
    return AddReader<CMpeg1VideoContainerReader>(ContainerFormat::MPEG1_VIDEO, label);
}

int ContainerReaderInventory::AddMpeg2VideoContainerReader(const char* label)
{
    return AddReader<CMpeg2VideoContainerReader>(ContainerFormat::MPEG2_VIDEO, label);
}

int ContainerReaderInventory::AddAacContainerReader(const char* label)
{
    return AddReader<CAacContainerReader>(ContainerFormat::AAC, label);
}

int ContainerReaderInventory::AddAc3ContainerReader(const char* label)
{
    return AddReader<CAc3ContainerReader>(ContainerFormat::AC3, label);
}

int ContainerReaderInventory::AddMpegAudioContainerReader(const char* label)
{
    return AddReader<CMpegAudioContainerReader>(ContainerFormat::MPEG_AUDIO, label);
}

} // namespace Quorvex::Vek
