#pragma once

// One HEVC short-term reference picture set: the picture order count
// differences of the pictures kept for reference, before (S0) and after
// (S1) the current one. Sequence parameter sets hold a list of them and a
// slice header may code one more; a set may be predicted from an earlier
// one, so a list is parsed in order.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class BitReader;

struct VEK_API HevcShortTermRefPicSet {
    enum : uint32_t { MaxPictures = 16, MaxSetsInSequence = 64 };

    uint8_t numNegative = 0;
    uint8_t numPositive = 0;
    int32_t deltaPocS0[MaxPictures] = {};
    int32_t deltaPocS1[MaxPictures] = {};
    bool usedS0[MaxPictures] = {};
    bool usedS1[MaxPictures] = {};

    uint32_t NumDeltaPocs() const { return uint32_t(numNegative) + numPositive; }

    // Reads set `index`; `sets` holds the sets before it. The slice-header
    // form is index == setsInSequence (the sequence's set count). `maxPictures`
    // caps the pictures of the set (the decoded picture buffer size). 0,
    // or RESULT_FORMAT_ERROR with a log line.
    static int Read(BitReader& bits, uint32_t index, uint32_t setsInSequence, const HevcShortTermRefPicSet* sets,
                    uint32_t maxPictures, HevcShortTermRefPicSet& out);
};

} // namespace Quorvex::Vek
