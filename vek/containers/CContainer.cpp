#include <vek/containers/CContainer.h>

#include <vek/core/Log.h>
#include <vek/media/ContainerProperty.h>

namespace Quorvex::Vek {

namespace {

// Reads exactly `width` bytes stored under `key`: -19007 when absent,
// -19016 for any other width.
int ReadExact(IProperties* bag, const char* key, int32_t width, unsigned char* bytes)
{
    if (!bag || !key)
        return RESULT_ARGUMENT_NULL;
    CByteArray* value = bag->GetProperty(key);
    if (!value)
        return RESULT_INDEX_OUT_OF_RANGE;
    if (value->GetLength() != width)
        return RESULT_TYPE_MISMATCH;
    return bag->GetProperty(key, width, bytes) == width ? RESULT_OK : RESULT_TYPE_MISMATCH;
}

int Emit(CString* text, CString** out)
{
    if (!out) {
        if (text)
            text->Release();
        return RESULT_ARGUMENT_NULL;
    }
    *out = text;
    return text ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

// Bytes as upper-case hex, `separator` between bytes when not 0.
CString* HexText(const unsigned char* bytes, int32_t count, char separator)
{
    static const char digits[] = "0123456789ABCDEF";
    char text[3 * 64];
    int32_t length = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (separator && i > 0)
            text[length++] = separator;
        text[length++] = digits[bytes[i] >> 4];
        text[length++] = digits[bytes[i] & 15];
    }
    return CString::Create(text, length);
}

} // namespace

const IProperties::Accessor CContainer::Accessors[] = {
    {ContainerProperty::TimeCode, "Starting Timecode", &IProperties::GetString, TXT},
    {ContainerProperty::MovCaptionType, "Caption Type", &CContainer::GetMovCaptionType, TXT},
    {ContainerProperty::MovTimeCodeMode, "Timecode Mode", &CContainer::GetMovTimeCodeMode, TXT},
    {ContainerProperty::MxfDataContainer, "Data Container", &CContainer::GetMxfDataContainer, TXT},
    {ContainerProperty::WavDescription, "Description", &IProperties::GetString, TXT},
    {ContainerProperty::WavOriginator, "Originator", &IProperties::GetString, TXT},
    {ContainerProperty::WavOriginatorReference, "Originator Reference", &IProperties::GetString, TXT},
    {ContainerProperty::WavOriginationDate, "Origination Date", &IProperties::GetString, TXT},
    {ContainerProperty::WavOriginationTime, "Origination Time", &IProperties::GetString, TXT},
    {ContainerProperty::WavUmid, "UMID", &CContainer::GetWavUmid, TXT},
    {ContainerProperty::WavCodingHistory, "Coding History", &IProperties::GetString, TXT},
    {"wav.bext.time_reference", "Time Reference", &CContainer::GetWavTimeReference, TXT},
    {nullptr, nullptr, nullptr, 0},
};

CContainer::CContainer(uint32_t type) : CObject(type) {}

CContainer::~CContainer() = default;

const IProperties::Accessor* CContainer::GetPropertyAccessors() const
{
    return Accessors;
}

int CContainer::GetMovCaptionType(IProperties* bag, const char* key, CString** out)
{
    unsigned char code[4];
    const int result = ReadExact(bag, key, 4, code);
    if (result < 0)
        return result;
    return Emit(CString::Create(reinterpret_cast<const char*>(code), 4), out);
}

int CContainer::GetMovTimeCodeMode(IProperties* bag, const char* key, CString** out)
{
    // The flags of a QuickTime timecode description, stored little-endian.
    static const struct {
        uint32_t bit;
        const char* name;
    } flags[] = {{1, "drop frame"}, {2, "24 hour max"}, {4, "negative times"}, {8, "counter"}};
    unsigned char bytes[4];
    const int result = ReadExact(bag, key, 4, bytes);
    if (result < 0)
        return result;
    const uint32_t mode = bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (uint32_t(bytes[3]) << 24);
    char text[64] = "";
    size_t length = 0;
    for (const auto& flag : flags) {
        if (!(mode & flag.bit))
            continue;
        length += size_t(snprintf(text + length, sizeof text - length, "%s%s", length ? ", " : "", flag.name));
    }
    return Emit(CString::Create(length ? text : "none"), out);
}

int CContainer::GetMxfDataContainer(IProperties* bag, const char* key, CString** out)
{
    unsigned char label[16];
    const int result = ReadExact(bag, key, 16, label);
    if (result < 0)
        return result;
    return Emit(HexText(label, 16, '.'), out);
}

int CContainer::GetWavUmid(IProperties* bag, const char* key, CString** out)
{
    unsigned char umid[64];
    const int result = ReadExact(bag, key, 64, umid);
    if (result < 0)
        return result;
    return Emit(HexText(umid, 64, 0), out);
}

int CContainer::GetWavTimeReference(IProperties* bag, const char* key, CString** out)
{
    unsigned char bytes[8];
    const int result = ReadExact(bag, key, 8, bytes);
    if (result < 0)
        return result;
    uint64_t samples = 0;
    for (int i = 7; i >= 0; --i)
        samples = samples << 8 | bytes[i];
    return Emit(CString::WithFormat("%llu", static_cast<unsigned long long>(samples)), out);
}

const char* CContainer::GetFormatName()
{
    return "";
}

int CContainer::SetContext(CContainerContext* context)
{
    m_context = RObject<CContainerContext>::FromObject(context);
    return RESULT_OK;
}

CValueList<unsigned int>* CContainer::GetVideoFormats()
{
    return nullptr;
}

int32_t CContainer::GetVideoMediaCount()
{
    return 0;
}

CVideoProperties* CContainer::GetVideoProperties(int32_t)
{
    return nullptr;
}

CValueList<unsigned int>* CContainer::GetAudioFormats()
{
    return nullptr;
}

int32_t CContainer::GetAudioMediaCount()
{
    return 0;
}

CAudioProperties* CContainer::GetAudioProperties(int32_t)
{
    return nullptr;
}

CValueList<unsigned int>* CContainer::GetSubtitleFormats()
{
    return nullptr;
}

int32_t CContainer::GetSubtitleMediaCount()
{
    return 0;
}

CSubtitleProperties* CContainer::GetSubtitleProperties(int32_t)
{
    return nullptr;
}

int CContainer::BeginIndex()
{
    return RESULT_OK;
}

int CContainer::EndIndex()
{
    return RESULT_OK;
}

bool CContainer::IsVideoReady(int32_t)
{
    return true;
}

bool CContainer::IsAudioReady(int32_t)
{
    return true;
}

bool CContainer::IsSubtitleReady(int32_t)
{
    return true;
}

bool CContainer::AnyTrackReady()
{
    const int32_t video = std::min<int32_t>(GetVideoMediaCount(), MaxVideoMedia);
    for (int32_t track = 0; track < video; ++track)
        if (IsVideoReady(track))
            return true;
    const int32_t audio = std::min<int32_t>(GetAudioMediaCount(), MaxAudioMedia);
    for (int32_t track = 0; track < audio; ++track)
        if (IsAudioReady(track))
            return true;
    const int32_t subtitles = std::min<int32_t>(GetSubtitleMediaCount(), MaxSubtitleMedia);
    for (int32_t track = 0; track < subtitles; ++track)
        if (IsSubtitleReady(track))
            return true;
    return false;
}

bool CContainer::WaitForMedia(int32_t milliseconds)
{
    CAutoLock lock(this);
    if (AnyTrackReady())
        return true;
    Wait(milliseconds);
    return AnyTrackReady();
}

bool CContainer::IsReady()
{
    CAutoLock lock(this);
    return m_ready;
}

int CContainer::SetReady(bool ready)
{
    CAutoLock lock(this);
    m_ready = ready;
    NotifyAll();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
