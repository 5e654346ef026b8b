// Format lookups get codes straight from files (sample entries, WAVE tags,
// FourCCs), so any 32-bit value must be answered, and the answers must hang
// together: a code has a name exactly when it has a canonical root, the root
// is a root, and the code descends from it.
#include <vek/media/Media.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

template <typename Family>
void CheckFamily(uint32_t code)
{
    const char* name = Family::GetName(code);
    const uint32_t root = Family::GetCanonicalFormat(code);
    Check((name != nullptr) == (root != 0));
    if (root != 0) {
        Check(Family::GetCanonicalFormat(root) == root);
        Check(Family::GetName(root) != nullptr);
    }
    Family::GetEquivalentFormat(code);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    for (size_t i = 0; i + 8 <= size; i += 8) {
        uint32_t code;
        uint32_t family;
        std::memcpy(&code, data + i, 4);
        std::memcpy(&family, data + i + 4, 4);
        CheckFamily<AudioFormat>(code);
        CheckFamily<VideoFormat>(code);
        CheckFamily<SubtitleFormat>(code);
        ContainerFormat::GetName(code);
        if (uint32_t category = AudioFormat::GetCategoricalFormat(code))
            Check(AudioFormat::GetName(category) != nullptr);
        if (uint32_t category = VideoFormat::GetCategoricalFormat(code))
            Check(VideoFormat::GetName(category) != nullptr);
        if (uint32_t root = VideoFormat::GetCanonicalFormat(code))
            Check(VideoFormat::IsFormat(code, root));
        Check(VideoFormat::IsFormat(code, code));
        if (VideoFormat::IsFormat(code, family) && code != family)
            Check(VideoFormat::GetCanonicalFormat(code) == VideoFormat::GetCanonicalFormat(family));
    }
    return 0;
}
