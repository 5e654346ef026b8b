#include <vek/containers/readers/wav/BroadcastAudioExtension.h>

#include <algorithm>
#include <cstring>

#include <vek/core/CByteArray.h>
#include <vek/core/Log.h>
#include <vek/core/RObject.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/ContainerProperty.h>

namespace Quorvex::Vek {

const char* const BroadcastAudioExtension::TimeReference = "wav.bext.time_reference";

namespace {

// Where each field of the fixed part lies.
struct Field {
    const char* key;
    int32_t offset;
    int32_t width;
};

const Field TextFields[] = {
    {ContainerProperty::WavDescription, 0, 256},
    {ContainerProperty::WavOriginator, 256, 32},
    {ContainerProperty::WavOriginatorReference, 288, 32},
    {ContainerProperty::WavOriginationDate, 320, 10},
    {ContainerProperty::WavOriginationTime, 330, 8},
};
constexpr int32_t TimeReferenceOffset = 338;
const Field Umid = {ContainerProperty::WavUmid, 348, 64};
const Field LoudnessFields[] = {
    {AudioProperty::WavLoudnessValue, 412, 2},
    {AudioProperty::WavLoudnessRange, 414, 2},
    {AudioProperty::WavMaxTruePeakLevel, 416, 2},
    {AudioProperty::WavMaxMomentaryLoudness, 418, 2},
    {AudioProperty::WavMaxShortTermLoudness, 420, 2},
};

// Text ends at its field's width or its first zero byte.
int32_t TextLength(const unsigned char* text, int32_t width)
{
    const void* zero = std::memchr(text, 0, size_t(width));
    return zero ? int32_t(static_cast<const unsigned char*>(zero) - text) : width;
}

int StoreFixedPart(const unsigned char* fixed, IProperties* container, IProperties* audio)
{
    int result = RESULT_OK;
    for (const Field& field : TextFields) {
        const unsigned char* text = fixed + field.offset;
        if ((result = container->SetProperty(field.key, TextLength(text, field.width), text)) < 0)
            return result;
    }
    // The two 32-bit halves, low first, are one little-endian 64-bit value.
    if ((result = container->SetProperty(BroadcastAudioExtension::TimeReference, 8, fixed + TimeReferenceOffset)) < 0 ||
        (result = container->SetProperty(Umid.key, Umid.width, fixed + Umid.offset)) < 0)
        return result;
    // Loudness figures are little-endian 16-bit values, as the bag stores them.
    for (const Field& field : LoudnessFields) {
        if ((result = audio->SetProperty(field.key, field.width, fixed + field.offset)) < 0)
            return result;
    }
    return RESULT_OK;
}

int ReadCodingHistory(CBinaryReader& reader, int64_t length, const char* owner, IProperties* container)
{
    if (length > BroadcastAudioExtension::MaxCodingHistoryBytes) {
        Log(LogLevel::Warning, "%s: 'bext' coding history of %lld bytes; keeping the first %d\n", owner,
            static_cast<long long>(length), BroadcastAudioExtension::MaxCodingHistoryBytes);
        length = BroadcastAudioExtension::MaxCodingHistoryBytes;
    }
    if (length == 0)
        return container->SetProperty(ContainerProperty::WavCodingHistory, 0, nullptr);
    RObject<CByteArray> history(CByteArray::Create(nullptr, int32_t(length)));
    if (!history) {
        Log(LogLevel::Error, "%s: no memory for %lld bytes of coding history\n", owner, static_cast<long long>(length));
        return RESULT_OUT_OF_MEMORY;
    }
    unsigned char* text = history->GetData();
    const int result = reader.ReadBytes(text, int32_t(length));
    if (result < 0)
        return result;
    return container->SetProperty(ContainerProperty::WavCodingHistory, TextLength(text, int32_t(length)), text);
}

} // namespace

int BroadcastAudioExtension::Read(CBinaryReader& reader, int64_t size, const char* owner, IProperties* container,
                                  IProperties* audio)
{
    if (!container || !audio)
        return RESULT_ARGUMENT_NULL;
    if (size < FixedBytes) {
        Log(LogLevel::Warning, "%s: 'bext' chunk of %lld bytes is shorter than its %lld-byte fixed part; ignored\n",
            owner, static_cast<long long>(size), static_cast<long long>(FixedBytes));
        return RESULT_OK;
    }
    unsigned char fixed[FixedBytes];
    int result = reader.ReadBytes(fixed, int32_t(FixedBytes));
    if (result < 0 || (result = StoreFixedPart(fixed, container, audio)) < 0)
        return result;
    return ReadCodingHistory(reader, size - FixedBytes, owner, container);
}

void BroadcastAudioExtension::Remove(IProperties* container)
{
    if (!container)
        return;
    for (const Field& field : TextFields)
        container->RemoveProperty(field.key);
    container->RemoveProperty(TimeReference);
    container->RemoveProperty(Umid.key);
    container->RemoveProperty(ContainerProperty::WavCodingHistory);
}

} // namespace Quorvex::Vek
