// One 'stsd' entry fed to each description reader. The first four bytes are
// the entry's format code and the fifth picks the file family; the rest is
// the entry's payload. Results must be 0, 1 or a code; what a reader
// describes must hold together.
#include <vek/containers/readers/mov/MovSampleDescription.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>

#include <cstdint>
#include <cstring>
#include <memory>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

bool Accepted(int result)
{
    return result == 0 || result == 1 || result == RESULT_FORMAT_ERROR || result == RESULT_OUT_OF_MEMORY;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 5)
        return 0;
    // The payload in a buffer of its own size, so a read past it is seen.
    const size_t payloadSize = size - 5;
    std::unique_ptr<uint8_t[]> payload(new uint8_t[payloadSize + 1]);
    std::memcpy(payload.get(), data + 5, payloadSize);
    MovBox entry;
    entry.type = uint32_t(data[0]) << 24 | uint32_t(data[1]) << 16 | uint32_t(data[2]) << 8 | data[3];
    entry.payload = payload.get();
    entry.size = payloadSize;
    entry.headerSize = 8;
    const bool quickTime = (data[4] & 1) != 0;

    RObject<CVideoProperties> video(new CVideoProperties());
    const int videoResult = ReadVideoDescription(entry, quickTime, video);
    Check(Accepted(videoResult));
    if (videoResult == 0)
        Check(video->GetWidth() >= 0 && video->GetHeight() >= 0);

    RObject<CAudioProperties> audio(new CAudioProperties());
    MovAudioLayout layout;
    const int audioResult = ReadAudioDescription(entry, quickTime, audio, layout);
    Check(Accepted(audioResult));
    if (audioResult == 0) {
        Check(audio->GetSampleRate() > 0 && audio->GetChannels() > 0);
        Check(!layout.pcm || (layout.bytesPerFrame > 0 && int32_t(layout.bytesPerFrame) == audio->GetBytesPerFrame()));
    }

    RObject<CSubtitleProperties> subtitle(new CSubtitleProperties());
    Check(Accepted(ReadSubtitleDescription(entry, subtitle)));
    return 0;
}
