// Feeds the input to the QuickTime metadata readers: the first byte picks
// a 'udta' payload, a 'meta' payload, or a 'tmcd' description entry whose
// last four bytes double as the first sample. Whatever is read must leave
// the bag consistent: a start timecode fits CTimeCode's text.
#include <vek/containers/readers/mov/MovMetadata.h>
#include <vek/containers/readers/mov/MovTimeCode.h>
#include <vek/core/Result.h>
#include <vek/media/CTimeCode.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/IProperties.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace Quorvex::Vek;

namespace {

void Check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "MovMetadataFuzz: %s\n", what);
        std::abort();
    }
}

MovBox Span(const uint8_t* data, size_t size, uint32_t type)
{
    MovBox box;
    box.type = type;
    box.payload = data;
    box.size = size;
    box.headerSize = 8;
    return box;
}

void ReadTimeCode(const uint8_t* data, size_t size, IProperties& bag)
{
    MovTimeCodeDescription description {};
    if (ReadTimeCodeDescription(Span(data, size, Four("tmcd")), description) != RESULT_OK)
        return;
    Check(size >= 4, "a description shorter than a sample was accepted");
    const int result = ApplyStartTimeCode(description, data + size - 4, 4, &bag);
    Check(result == RESULT_OK || result == RESULT_OUT_OF_MEMORY, "an accepted description was refused");
    if (result == RESULT_OK) {
        CByteArray* text = bag.GetProperty(ContainerProperty::TimeCode);
        Check(text && text->GetLength() > 0 && text->GetLength() < CTimeCode::TextCapacity, "timecode text length");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const uint8_t mode = data[0] % 3;
    ++data;
    --size;
    IProperties bag;
    int result = RESULT_OK;
    if (mode == 0)
        result = ReadUserData(Span(data, size, Four("udta")), &bag);
    else if (mode == 1)
        result = ReadMetadata(Span(data, size, Four("meta")), &bag);
    else
        ReadTimeCode(data, size, bag);
    Check(result == RESULT_OK || result == RESULT_OUT_OF_MEMORY, "metadata made the file unreadable");
    return 0;
}
