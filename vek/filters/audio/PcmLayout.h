#pragma once

// How one linear PCM coding lays a sample out in memory: its width in bytes,
// the bits that carry the value, signedness or IEEE float or G.711
// companding, and byte order. Built from an audio format code of the 'lpcm'
// family; aliases ('s16l', 'f32l', 'u8  ', the WAVE G.711 tags) resolve
// through AudioFormat::GetEquivalentFormat to the code that names the layout.
//
// What a sample stands for, as a fraction of full scale:
// - a signed integer x of b bits is x / 2^(b-1), so the range is
//   [-1, 1 - 2^-(b-1)];
// - an unsigned integer u of b bits is the signed value u - 2^(b-1);
// - a float is its own value (NaN and infinities included);
// - an A-law or mu-law code is its G.711 16-bit linear value / 2^15.
//
// 20-bit samples ('in20', '02ni') take three bytes with the value in the top
// 20 bits, as WAVE (left-justified samples), Core Audio (aligned high) and
// FFmpeg (24-bit storage, 20 significant bits) keep them: a reader ignores
// the low four bits, a writer clears them.
//
// 'lpcm' alone names the family, not a layout, and is refused like any code
// outside the table below (-19017 and a level-1 log line).
#include <cstddef>

#include <vek/core/Types.h>
#include <vek/io/ByteOrder.h>

namespace Quorvex::Vek {

struct VEK_API PcmLayout {
    enum class Coding : uint8_t { Signed, Unsigned, Float, ALaw, MuLaw };

    uint32_t format = 0; // the code that names the layout: 'sowt' for 's16l'
    Coding coding = Coding::Signed;
    ByteOrder order = ByteOrder::LittleEndian;
    int32_t bytes = 0; // per sample of one channel
    int32_t bits = 0;  // significant bits; 8 for the G.711 codes

    // -19017 with a log line naming the code when it is not a layout above.
    static int FromFormat(uint32_t format, PcmLayout& out);
    // The same lookup without a log line: null when the code is no layout.
    static const PcmLayout* Find(uint32_t format);

    // The naming code of every layout, in a fixed order; GetFormatCount() of them.
    static const uint32_t* GetFormats();
    static size_t GetFormatCount();

    bool IsInteger() const { return coding == Coding::Signed || coding == Coding::Unsigned; }
    bool IsCompanded() const { return coding == Coding::ALaw || coding == Coding::MuLaw; }
};

} // namespace Quorvex::Vek
