#include <vek/filters/audio/PcmLayout.h>

#include <array>
#include <iterator>

#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek {

namespace {

using Coding = PcmLayout::Coding;
constexpr ByteOrder Little = ByteOrder::LittleEndian;
constexpr ByteOrder Big = ByteOrder::BigEndian;

constexpr PcmLayout kLayouts[] = {
    {AudioFormat::UInt8, Coding::Unsigned, Little, 1, 8}, {AudioFormat::Int8, Coding::Signed, Little, 1, 8},
    {AudioFormat::Int16B, Coding::Signed, Big, 2, 16},    {AudioFormat::Int16L, Coding::Signed, Little, 2, 16},
    {AudioFormat::Int20B, Coding::Signed, Big, 3, 20},    {AudioFormat::Int20L, Coding::Signed, Little, 3, 20},
    {AudioFormat::Int24B, Coding::Signed, Big, 3, 24},    {AudioFormat::Int24L, Coding::Signed, Little, 3, 24},
    {AudioFormat::Int32B, Coding::Signed, Big, 4, 32},    {AudioFormat::Int32L, Coding::Signed, Little, 4, 32},
    {AudioFormat::UInt16B, Coding::Unsigned, Big, 2, 16}, {AudioFormat::UInt16L, Coding::Unsigned, Little, 2, 16},
    {AudioFormat::UInt24B, Coding::Unsigned, Big, 3, 24}, {AudioFormat::UInt24L, Coding::Unsigned, Little, 3, 24},
    {AudioFormat::UInt32B, Coding::Unsigned, Big, 4, 32}, {AudioFormat::UInt32L, Coding::Unsigned, Little, 4, 32},
    {AudioFormat::Float32B, Coding::Float, Big, 4, 32},   {AudioFormat::Float32L, Coding::Float, Little, 4, 32},
    {AudioFormat::Float64B, Coding::Float, Big, 8, 64},   {AudioFormat::Float64L, Coding::Float, Little, 8, 64},
    {AudioFormat::aLaw, Coding::ALaw, Little, 1, 8},      {AudioFormat::muLaw, Coding::MuLaw, Little, 1, 8},
};

constexpr auto kFormats = [] {
    std::array<uint32_t, std::size(kLayouts)> formats{};
    for (size_t i = 0; i < formats.size(); ++i)
        formats[i] = kLayouts[i].format;
    return formats;
}();

const PcmLayout* FindLayout(uint32_t format)
{
    for (const PcmLayout& layout : kLayouts)
        if (layout.format == format)
            return &layout;
    return nullptr;
}

// An alias may sit more than one equivalence away from the named code (a
// WAVE G.711 alias tag leads to its parent tag, that to 'alaw'); the table
// has no longer chains than this.
constexpr int kMaxAliasSteps = 4;

} // namespace

const PcmLayout* PcmLayout::Find(uint32_t format)
{
    uint32_t code = format;
    for (int step = 0; code != 0 && step <= kMaxAliasSteps; ++step) {
        if (const PcmLayout* layout = FindLayout(code))
            return layout;
        code = AudioFormat::GetEquivalentFormat(code);
    }
    return nullptr;
}

int PcmLayout::FromFormat(uint32_t format, PcmLayout& out)
{
    if (const PcmLayout* layout = Find(format)) {
        out = *layout;
        return RESULT_OK;
    }
    if (format == AudioFormat::LPCM)
        Log(LogLevel::Error, "PcmLayout::FromFormat: format 'lpcm' names no sample layout\n");
    else
        Log(LogLevel::Error, "PcmLayout::FromFormat: format '%s' (0x%08X) is not a PCM sample layout\n",
            FourCCText(format).c_str(), unsigned(format));
    return RESULT_FORMAT_ERROR;
}

const uint32_t* PcmLayout::GetFormats()
{
    return kFormats.data();
}

size_t PcmLayout::GetFormatCount()
{
    return kFormats.size();
}

} // namespace Quorvex::Vek
