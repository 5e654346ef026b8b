#include <vek/elementary/HevcPictureOrderCounter.h>

#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/HevcSliceHeader.h>

namespace Quorvex::Vek {

int64_t HevcPictureOrderCounter::Next(const HevcSequenceParameterSet& sps, const HevcSliceHeader& slice)
{
    const uint8_t type = slice.nalType;
    const int64_t maxLsb = int64_t(1) << sps.log2MaxPicOrderCntLsb;
    const int64_t lsb = slice.picOrderCntLsb;
    if (HevcNalHeader::IsIrap(type))
        m_noRaslOutput = HevcNalHeader::IsIdr(type) || HevcNalHeader::IsBla(type) || m_first;
    int64_t msb = 0;
    if (!(HevcNalHeader::IsIrap(type) && m_noRaslOutput)) {
        if (lsb < m_prevTid0Lsb && m_prevTid0Lsb - lsb >= maxLsb / 2)
            msb = m_prevTid0Msb + maxLsb;
        else if (lsb > m_prevTid0Lsb && lsb - m_prevTid0Lsb > maxLsb / 2)
            msb = m_prevTid0Msb - maxLsb;
        else
            msb = m_prevTid0Msb;
    }
    m_first = false;
    if (slice.temporalId == 0 && !HevcNalHeader::IsRasl(type) && !HevcNalHeader::IsRadl(type) &&
        !HevcNalHeader::IsSubLayerNonReference(type)) {
        m_prevTid0Lsb = lsb;
        m_prevTid0Msb = msb;
    }
    return msb + lsb;
}

} // namespace Quorvex::Vek
