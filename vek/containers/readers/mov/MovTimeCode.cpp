#include <vek/containers/readers/mov/MovTimeCode.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>
#include <vek/media/CTimeCode.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/IProperties.h>

namespace Quorvex::Vek {

const char* const MovTimeCodeRate = "mov.tmcd.rate";
const char* const MovTimeCodeModulus = "mov.tmcd.modulus";

namespace {

void StoreLittleEndian32(uint32_t value, unsigned char* out)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<unsigned char>(value >> (8 * i));
}

bool HasUsableRate(const MovTimeCodeDescription& description)
{
    return description.timeScale != 0 && description.frameDuration != 0 && description.framesPerSecond != 0;
}

void LogUnusableRate(const MovTimeCodeDescription& description)
{
    Log(LogLevel::Error, "MovTimeCode: 'tmcd' rate %u/%u with %u frames per second cannot count frames\n",
        description.timeScale, description.frameDuration, unsigned(description.framesPerSecond));
}

// The label text of `frame`, or a counter track's value.
void StartText(const MovTimeCodeDescription& description, int32_t frame, char (&text)[CTimeCode::TextCapacity])
{
    if (description.flags & MovTimeCodeDescription::Counter) {
        std::snprintf(text, sizeof text, "%" PRId32, frame);
        return;
    }
    CTimeCode timeCode(description.timeScale, description.frameDuration, description.framesPerSecond,
                       (description.flags & MovTimeCodeDescription::DropFrame) != 0);
    timeCode.FromFrames(frame);
    timeCode.ToString(text, ';');
}

} // namespace

int ReadTimeCodeDescription(const MovBox& entry, MovTimeCodeDescription& description)
{
    MovFieldReader fields(entry);
    fields.Skip(6 + 2 + 4); // reserved, data reference index, reserved
    description.flags = fields.Read32();
    description.timeScale = fields.Read32();
    description.frameDuration = fields.Read32();
    description.framesPerSecond = fields.Read8();
    if (fields.Failed()) {
        Log(LogLevel::Error, "MovTimeCode: 'tmcd' description of %zu bytes is shorter than its 25 bytes of fields\n",
            entry.size);
        return RESULT_FORMAT_ERROR;
    }
    if (!HasUsableRate(description)) {
        LogUnusableRate(description);
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

int ApplyStartTimeCode(const MovTimeCodeDescription& description, const uint8_t* sample, size_t size,
                       IProperties* container)
{
    if (!container || !sample)
        return RESULT_ARGUMENT_NULL;
    if (size < 4) {
        Log(LogLevel::Error, "MovTimeCode: first 'tmcd' sample has %zu bytes, fewer than its 4-byte frame number\n",
            size);
        return RESULT_FORMAT_ERROR;
    }
    if (!HasUsableRate(description)) {
        LogUnusableRate(description);
        return RESULT_FORMAT_ERROR;
    }
    // Negative numbers are meaningful with the negative-times flag; without
    // it CTimeCode wraps them into the day as it does any total.
    const int32_t frame = int32_t(BigEndian::Load32(sample));
    char text[CTimeCode::TextCapacity];
    StartText(description, frame, text);
    unsigned char mode[4];
    unsigned char rate[8];
    StoreLittleEndian32(description.flags, mode);
    StoreLittleEndian32(description.timeScale, rate);
    StoreLittleEndian32(description.frameDuration, rate + 4);
    int result;
    if ((result = container->SetProperty(ContainerProperty::TimeCode, int32_t(std::strlen(text)),
                                         reinterpret_cast<const unsigned char*>(text))) < 0 ||
        (result = container->SetProperty(ContainerProperty::MovTimeCodeMode, 4, mode)) < 0 ||
        (result = container->SetProperty(MovTimeCodeRate, 8, rate)) < 0 ||
        (result = container->SetProperty(MovTimeCodeModulus, 1, &description.framesPerSecond)) < 0)
        return result;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
