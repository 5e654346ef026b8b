#include <vek/filters/video/PictureConversion.h>

#include <algorithm>
#include <cstring>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/filters/video/PictureRows.h>

namespace Quorvex::Vek {

namespace {

using namespace PictureRows;

constexpr int32_t kSlotAlignment = 64;
// Two rows (U and V) for each of: two input rows read, the vertical
// result, the horizontal result.
constexpr int32_t kSlots = 8;

int64_t SlotBytes(int32_t width)
{
    return (int64_t(width) + kSlotAlignment - 1) / kSlotAlignment * kSlotAlignment;
}

enum class Resample : uint8_t { None, Halve, Double };

Resample ResampleOf(int inShift, int outShift)
{
    return inShift == outShift ? Resample::None : inShift < outShift ? Resample::Halve : Resample::Double;
}

PackedOrder OrderOf(const PictureLayoutTraits& traits)
{
    return traits.packedLuma == 0 ? PackedOrder::YUYV : PackedOrder::UYVY;
}

void CopyRows(const PicturePlane& from, const PicturePlane& to)
{
    // Rows without padding on both sides: one block.
    if (from.stride == to.rowBytes && to.stride == to.rowBytes) {
        std::memcpy(to.data, from.data, size_t(to.rowBytes) * size_t(to.rows));
        return;
    }
    for (int32_t row = 0; row < to.rows; ++row)
        std::memcpy(to.Row(row), from.Row(row), size_t(to.rowBytes));
}

void SwapPlaneRows(const PicturePlane& from, const PicturePlane& to)
{
    for (int32_t row = 0; row < to.rows; ++row)
        SwapPairs(from.Row(row), to.Row(row), to.rowBytes);
}

struct ChromaRow {
    const uint8_t* u;
    const uint8_t* v;
};

// One conversion between layouts that differ in arrangement or subsampling.
class Conversion {
public:
    Conversion(const PictureView& in, const PictureView& out, uint8_t* scratch)
        : m_in(in), m_out(out), m_inTraits(GetLayoutTraits(in.layout)), m_outTraits(GetLayoutTraits(out.layout)),
          m_slotBytes(SlotBytes(in.width)), m_scratch(scratch),
          m_vertical(ResampleOf(m_inTraits.chromaShiftY, m_outTraits.chromaShiftY)),
          m_horizontal(ResampleOf(m_inTraits.chromaShiftX, m_outTraits.chromaShiftX)),
          m_inChromaWidth(GetChromaWidth(in.layout, in.width)), m_outChromaWidth(GetChromaWidth(out.layout, out.width)),
          m_inChromaRows(GetChromaHeight(in.layout, in.height)),
          m_outChromaRows(GetChromaHeight(out.layout, out.height))
    {
    }

    void Run()
    {
        const bool inPacked = m_inTraits.arrangement == ChromaArrangement::Packed;
        const bool outPacked = m_outTraits.arrangement == ChromaArrangement::Packed;
        // Packed input yields its luma while its chroma is read.
        if (!inPacked && !outPacked)
            CopyRows(m_in.planes[0], m_out.planes[0]);
        for (int32_t row = 0; row < m_outChromaRows; ++row)
            ConvertChromaRow(row);
    }

private:
    uint8_t* Slot(int index) const { return m_scratch + index * m_slotBytes; }

    // Chroma row `row` of the input as two rows of samples: the planes'
    // own rows, or rows unpacked into u and v. Unpacking a packed row also
    // writes its luma to the output's luma plane.
    ChromaRow Read(int32_t row, uint8_t* u, uint8_t* v) const
    {
        switch (m_inTraits.arrangement) {
        case ChromaArrangement::Planar: {
            const uint8_t* first = m_in.planes[1].Row(row);
            const uint8_t* second = m_in.planes[2].Row(row);
            return m_inTraits.vFirst ? ChromaRow{second, first} : ChromaRow{first, second};
        }
        case ChromaArrangement::Interleaved:
            if (m_inTraits.vFirst)
                Deinterleave(m_in.planes[1].Row(row), v, u, m_inChromaWidth);
            else
                Deinterleave(m_in.planes[1].Row(row), u, v, m_inChromaWidth);
            return {u, v};
        case ChromaArrangement::Packed:
            Unpack(m_in.planes[0].Row(row), m_out.planes[0].Row(row), u, v, m_in.width, OrderOf(m_inTraits));
            return {u, v};
        }
        return {u, v};
    }

    // Where the finished chroma of output row `row` goes: the output's own
    // planes when it has them, else scratch to interleave or pack from.
    void FinalRows(int32_t row, uint8_t*& u, uint8_t*& v) const
    {
        if (m_outTraits.arrangement != ChromaArrangement::Planar) {
            u = Slot(6);
            v = Slot(7);
            return;
        }
        uint8_t* first = m_out.planes[1].Row(row);
        uint8_t* second = m_out.planes[2].Row(row);
        u = m_outTraits.vFirst ? second : first;
        v = m_outTraits.vFirst ? first : second;
    }

    ChromaRow ResampleVertically(int32_t row, uint8_t* u, uint8_t* v) const
    {
        const int32_t count = m_inChromaWidth;
        switch (m_vertical) {
        case Resample::None:
            return Read(row, u, v);
        case Resample::Double: {
            // Output row 2k lies above chroma row k, row 2k+1 below it.
            const int32_t nearRow = row / 2;
            const int32_t farRow = row % 2 == 0 ? std::max(nearRow - 1, 0) : std::min(nearRow + 1, m_inChromaRows - 1);
            const ChromaRow a = Read(nearRow, Slot(0), Slot(1));
            const ChromaRow b = Read(farRow, Slot(2), Slot(3));
            InterpolateRows(a.u, b.u, u, count);
            InterpolateRows(a.v, b.v, v, count);
            return {u, v};
        }
        case Resample::Halve: {
            if (2 * row + 1 >= m_in.height)
                return Read(2 * row, u, v);
            const ChromaRow a = Read(2 * row, Slot(0), Slot(1));
            const ChromaRow b = Read(2 * row + 1, Slot(2), Slot(3));
            AverageRows(a.u, b.u, u, count);
            AverageRows(a.v, b.v, v, count);
            return {u, v};
        }
        }
        return {u, v};
    }

    void ConvertChromaRow(int32_t row) const
    {
        uint8_t* finalU = nullptr;
        uint8_t* finalV = nullptr;
        FinalRows(row, finalU, finalV);
        const bool across = m_horizontal != Resample::None;
        ChromaRow chroma = ResampleVertically(row, across ? Slot(4) : finalU, across ? Slot(5) : finalV);
        if (m_horizontal == Resample::Halve) {
            HalveRow(chroma.u, finalU, m_inChromaWidth);
            HalveRow(chroma.v, finalV, m_inChromaWidth);
            chroma = {finalU, finalV};
        } else if (m_horizontal == Resample::Double) {
            DoubleRow(chroma.u, finalU, m_outChromaWidth);
            DoubleRow(chroma.v, finalV, m_outChromaWidth);
            chroma = {finalU, finalV};
        }
        Write(row, chroma, finalU, finalV);
    }

    void Write(int32_t row, const ChromaRow& chroma, uint8_t* finalU, uint8_t* finalV) const
    {
        switch (m_outTraits.arrangement) {
        case ChromaArrangement::Planar:
            if (chroma.u != finalU)
                std::memcpy(finalU, chroma.u, size_t(m_outChromaWidth));
            if (chroma.v != finalV)
                std::memcpy(finalV, chroma.v, size_t(m_outChromaWidth));
            return;
        case ChromaArrangement::Interleaved:
            if (m_outTraits.vFirst)
                Interleave(chroma.v, chroma.u, m_out.planes[1].Row(row), m_outChromaWidth);
            else
                Interleave(chroma.u, chroma.v, m_out.planes[1].Row(row), m_outChromaWidth);
            return;
        case ChromaArrangement::Packed:
            // Packed output is 4:2:2: one chroma row per picture row.
            Pack(m_in.planes[0].Row(row), chroma.u, chroma.v, m_out.planes[0].Row(row), m_out.width,
                 OrderOf(m_outTraits));
            return;
        }
    }

    const PictureView& m_in;
    const PictureView& m_out;
    const PictureLayoutTraits& m_inTraits;
    const PictureLayoutTraits& m_outTraits;
    const int64_t m_slotBytes;
    uint8_t* const m_scratch;
    const Resample m_vertical;
    const Resample m_horizontal;
    const int32_t m_inChromaWidth;
    const int32_t m_outChromaWidth;
    const int32_t m_inChromaRows;
    const int32_t m_outChromaRows;
};

// Layouts of one subsampling and arrangement that differ at most in the
// order of U and V: planes copied, or the bytes of each pair swapped.
bool ConvertBySwapping(const PictureView& in, const PictureView& out)
{
    const PictureLayoutTraits& from = GetLayoutTraits(in.layout);
    const PictureLayoutTraits& to = GetLayoutTraits(out.layout);
    if (from.arrangement != to.arrangement || from.chromaShiftX != to.chromaShiftX ||
        from.chromaShiftY != to.chromaShiftY)
        return false;
    switch (from.arrangement) {
    case ChromaArrangement::Packed:
        if (in.layout == out.layout)
            CopyRows(in.planes[0], out.planes[0]);
        else
            SwapPlaneRows(in.planes[0], out.planes[0]);
        return true;
    case ChromaArrangement::Interleaved:
        CopyRows(in.planes[0], out.planes[0]);
        if (from.vFirst == to.vFirst)
            CopyRows(in.planes[1], out.planes[1]);
        else
            SwapPlaneRows(in.planes[1], out.planes[1]);
        return true;
    case ChromaArrangement::Planar: {
        const bool swap = from.vFirst != to.vFirst;
        CopyRows(in.planes[0], out.planes[0]);
        CopyRows(in.planes[swap ? 2 : 1], out.planes[1]);
        CopyRows(in.planes[swap ? 1 : 2], out.planes[2]);
        return true;
    }
    }
    return false;
}

} // namespace

int64_t GetConversionScratchBytes(int32_t width)
{
    return kSlots * SlotBytes(width < 0 ? 0 : width);
}

int ConvertPicture(const PictureView& in, const PictureView& out, uint8_t* scratch, int64_t scratchBytes)
{
    if (in.layout >= PictureLayout::Count || out.layout >= PictureLayout::Count) {
        Log(LogLevel::Error, "ConvertPicture: a picture without layout (%d -> %d)\n", int(in.layout),
            int(out.layout));
        return RESULT_FORMAT_ERROR;
    }
    if (in.width != out.width || in.height != out.height || in.width <= 0 || in.height <= 0) {
        Log(LogLevel::Error, "ConvertPicture: input %dx%d, output %dx%d\n", in.width, in.height, out.width,
            out.height);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (ConvertBySwapping(in, out))
        return RESULT_OK;
    if (!scratch) {
        Log(LogLevel::Error, "ConvertPicture: scratch is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    if (scratchBytes < GetConversionScratchBytes(in.width)) {
        Log(LogLevel::Error, "ConvertPicture: scratch of %lld bytes, %lld needed\n",
            static_cast<long long>(scratchBytes), static_cast<long long>(GetConversionScratchBytes(in.width)));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    Conversion(in, out, scratch).Run();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
