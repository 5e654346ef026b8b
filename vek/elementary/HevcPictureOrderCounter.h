#pragma once

// Picture order counts of an HEVC stream, for putting pictures in display
// order. Fed the header of each picture's first slice segment in decoding
// order (base layer); remembers the last picture of temporal sub-layer 0
// that later counts are relative to.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct HevcSequenceParameterSet;
struct HevcSliceHeader;

class VEK_API HevcPictureOrderCounter {
public:
    // The count of the picture. An IDR or BLA picture, the first picture
    // and the first after an end of sequence (call EndOfSequence) start
    // again from their own low bits; so does a CRA picture in those places,
    // after which its leading skipped (RASL) pictures cannot be decoded:
    // SkipsLeadingPictures() says so.
    int64_t Next(const HevcSequenceParameterSet& sps, const HevcSliceHeader& slice);

    // An end-of-sequence unit: the next random access point restarts counting.
    void EndOfSequence() { m_first = true; }

    // True when the last random access point started a new sequence, so the
    // RASL pictures that follow it refer to pictures never decoded.
    bool SkipsLeadingPictures() const { return m_noRaslOutput; }

private:
    int64_t m_prevTid0Lsb = 0;
    int64_t m_prevTid0Msb = 0;
    bool m_first = true;
    bool m_noRaslOutput = true;
};

} // namespace Quorvex::Vek
