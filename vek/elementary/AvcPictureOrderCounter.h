#pragma once

// Picture order counts of an AVC stream, for putting decoded pictures in
// display order. Fed every picture's first slice header in decoding order;
// keeps what the next picture's count depends on (the previous reference
// picture's counts, the frame number offset).
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct AvcSequenceParameterSet;
struct AvcSliceHeader;

class VEK_API AvcPictureOrderCounter {
public:
    struct Counts {
        int64_t top = 0;
        int64_t bottom = 0;
        // The picture's own count: the smaller of a frame's two, a field's one.
        int64_t picture = 0;
    };

    // Computes the counts of the picture whose first slice is `slice`.
    // `memoryManagementReset`: the picture's reference marking holds
    // operation 5 (the slice header parser does not read that far). 0, or
    // RESULT_FORMAT_ERROR when the counts would overflow (hostile offsets).
    int Next(const AvcSequenceParameterSet& sps, const AvcSliceHeader& slice, bool memoryManagementReset,
             Counts& out);

    // Forgets the history, as at the start of a stream.
    void Reset() { *this = AvcPictureOrderCounter(); }

private:
    int FromLsb(const AvcSequenceParameterSet& sps, const AvcSliceHeader& slice, Counts& out) const;
    int FromFrameNum(const AvcSequenceParameterSet& sps, const AvcSliceHeader& slice, int64_t frameNumOffset,
                     Counts& out) const;

    int64_t m_prevMsb = 0;
    int64_t m_prevLsb = 0;
    int64_t m_prevFrameNumOffset = 0;
    uint32_t m_prevFrameNum = 0;
    bool m_prevHadReset = false;
};

} // namespace Quorvex::Vek
