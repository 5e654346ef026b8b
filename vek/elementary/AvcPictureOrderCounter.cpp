#include <vek/elementary/AvcPictureOrderCounter.h>

#include <vek/core/CheckedMath.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/AvcSliceHeader.h>
#include <vek/elementary/FieldCheck.h>

#include <algorithm>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcPictureOrderCounter::Next";

void SetPictureCount(const AvcSliceHeader& slice, AvcPictureOrderCounter::Counts& out)
{
    if (!slice.fieldPic)
        out.picture = std::min(out.top, out.bottom);
    else
        out.picture = slice.bottomField ? out.bottom : out.top;
}

} // namespace

int AvcPictureOrderCounter::FromLsb(const AvcSequenceParameterSet& sps, const AvcSliceHeader& slice,
                                    Counts& out) const
{
    const int64_t maxLsb = int64_t(1) << sps.log2MaxPicOrderCntLsb;
    const int64_t lsb = slice.picOrderCntLsb;
    int64_t msb = m_prevMsb;
    if (lsb < m_prevLsb && m_prevLsb - lsb >= maxLsb / 2)
        msb = m_prevMsb + maxLsb;
    else if (lsb > m_prevLsb && lsb - m_prevLsb > maxLsb / 2)
        msb = m_prevMsb - maxLsb;
    out.top = msb + lsb;
    out.bottom = slice.fieldPic ? msb + lsb : out.top + slice.deltaPicOrderCntBottom;
    return 0;
}

int AvcPictureOrderCounter::FromFrameNum(const AvcSequenceParameterSet& sps, const AvcSliceHeader& slice,
                                         int64_t frameNumOffset, Counts& out) const
{
    const int64_t absolute = frameNumOffset + slice.frameNum;
    if (sps.picOrderCntType == 2) {
        const int64_t count = slice.IsIdr() ? 0 : slice.IsReference() ? 2 * absolute : 2 * absolute - 1;
        out.top = out.bottom = count;
        return 0;
    }
    const int64_t cycleLength = sps.numRefFramesInPicOrderCntCycle;
    int64_t frameIndex = cycleLength != 0 ? absolute : 0;
    if (!slice.IsReference() && frameIndex > 0)
        --frameIndex;
    int64_t expected = 0;
    if (frameIndex > 0) {
        int64_t deltaPerCycle = 0;
        for (int64_t i = 0; i < cycleLength; ++i)
            deltaPerCycle += sps.offsetForRefFrame[i];
        const int64_t cycles = (frameIndex - 1) / cycleLength;
        const int64_t inCycle = (frameIndex - 1) % cycleLength;
        // Far below the limit, so the sums below cannot wrap either.
        constexpr int64_t Limit = int64_t(1) << 60;
        if (!Checked::Multiply(cycles, deltaPerCycle, &expected) || expected > Limit || expected < -Limit)
            return FieldCheck::Refuse(Where, "expected picture order count cycle", cycles);
        for (int64_t i = 0; i <= inCycle; ++i)
            expected += sps.offsetForRefFrame[i];
    }
    if (!slice.IsReference())
        expected += sps.offsetForNonRefPic;
    if (!slice.fieldPic) {
        out.top = expected + slice.deltaPicOrderCnt[0];
        out.bottom = out.top + sps.offsetForTopToBottomField + slice.deltaPicOrderCnt[1];
    } else if (!slice.bottomField) {
        out.top = out.bottom = expected + slice.deltaPicOrderCnt[0];
    } else {
        out.top = out.bottom = expected + sps.offsetForTopToBottomField + slice.deltaPicOrderCnt[0];
    }
    return 0;
}

int AvcPictureOrderCounter::Next(const AvcSequenceParameterSet& sps, const AvcSliceHeader& slice,
                                 bool memoryManagementReset, Counts& out)
{
    Counts counts;
    int r = 0;
    if (sps.picOrderCntType == 0) {
        if (slice.IsIdr())
            m_prevMsb = m_prevLsb = 0;
        if ((r = FromLsb(sps, slice, counts)) < 0)
            return r;
        if (slice.IsReference()) {
            m_prevMsb = counts.top - slice.picOrderCntLsb;
            m_prevLsb = slice.picOrderCntLsb;
            if (slice.fieldPic && slice.bottomField)
                m_prevMsb = counts.bottom - slice.picOrderCntLsb;
            if (memoryManagementReset) {
                // After the reset the picture counts as 0 (its top field as
                // the difference to the bottom one).
                m_prevMsb = 0;
                m_prevLsb = slice.fieldPic ? 0 : counts.top - std::min(counts.top, counts.bottom);
            }
        }
    } else {
        const int64_t maxFrameNum = int64_t(1) << sps.log2MaxFrameNum;
        const int64_t previousOffset = m_prevHadReset ? 0 : m_prevFrameNumOffset;
        int64_t frameNumOffset = previousOffset;
        if (slice.IsIdr())
            frameNumOffset = 0;
        else if (m_prevFrameNum > slice.frameNum && !m_prevHadReset)
            frameNumOffset = previousOffset + maxFrameNum;
        if ((r = FromFrameNum(sps, slice, frameNumOffset, counts)) < 0)
            return r;
        m_prevFrameNumOffset = frameNumOffset;
        m_prevFrameNum = memoryManagementReset ? 0 : slice.frameNum;
    }
    m_prevHadReset = memoryManagementReset;
    SetPictureCount(slice, counts);
    out = counts;
    return 0;
}

} // namespace Quorvex::Vek
