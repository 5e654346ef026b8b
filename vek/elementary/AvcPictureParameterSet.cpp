#include <vek/elementary/AvcPictureParameterSet.h>

#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcPictureParameterSet::Parse";

int CeilLog2(uint32_t value)
{
    int bits = 0;
    while ((uint64_t(1) << bits) < value)
        ++bits;
    return bits;
}

int SkipSliceGroupMap(BitReader& bits, uint32_t groups)
{
    const uint32_t mapType = bits.ReadUE();
    switch (mapType) {
    case 0:
        for (uint32_t i = 0; i < groups; ++i)
            bits.ReadUE(); // run_length_minus1
        break;
    case 2:
        for (uint32_t i = 0; i + 1 < groups; ++i) {
            bits.ReadUE(); // top_left
            bits.ReadUE(); // bottom_right
        }
        break;
    case 3: case 4: case 5:
        bits.ReadFlag(); // slice_group_change_direction_flag
        bits.ReadUE(); // slice_group_change_rate_minus1
        break;
    case 6: {
        const uint64_t mapUnits = uint64_t(bits.ReadUE()) + 1;
        // The loop ends at the unit's end at the latest: the reader fails there.
        const int idBits = CeilLog2(groups);
        for (uint64_t i = 0; i < mapUnits && !bits.HasError(); ++i)
            bits.ReadBits(idBits);
        break;
    }
    case 1:
        break;
    default:
        return FieldCheck::Refuse(Where, "slice_group_map_type", mapType);
    }
    return 0;
}

int SkipScalingLists(BitReader& bits, int lists)
{
    for (int i = 0; i < lists; ++i) {
        if (!bits.ReadFlag())
            continue;
        int32_t last = 8;
        int32_t next = 8;
        const int size = i < 6 ? 16 : 64;
        for (int j = 0; j < size && next != 0 && !bits.HasError(); ++j) {
            const int32_t delta = bits.ReadSE();
            if (delta < -128 || delta > 127)
                return FieldCheck::Refuse(Where, "delta_scale", delta);
            next = (last + delta + 256) % 256;
            if (next != 0)
                last = next;
        }
    }
    return 0;
}

int ParseTail(BitReader& bits, const AvcSequenceParameterSet* sps, AvcPictureParameterSet& pps)
{
    pps.transform8x8Mode = bits.ReadFlag();
    pps.scalingMatrixPresent = bits.ReadFlag();
    if (pps.scalingMatrixPresent) {
        const uint32_t chroma = sps ? sps->chromaFormatIdc : 1;
        const int r = SkipScalingLists(bits, 6 + (chroma == 3 ? 6 : 2) * (pps.transform8x8Mode ? 1 : 0));
        if (r < 0)
            return r;
    }
    pps.secondChromaQpIndexOffset = bits.ReadSE();
    if (pps.secondChromaQpIndexOffset < -12 || pps.secondChromaQpIndexOffset > 12)
        return FieldCheck::Refuse(Where, "second_chroma_qp_index_offset", pps.secondChromaQpIndexOffset);
    return 0;
}

} // namespace

int AvcPictureParameterSet::Parse(const uint8_t* unit, size_t size, const AvcSequenceParameterSet* const* sequenceSets,
                                  AvcPictureParameterSet& out)
{
    AvcNalHeader header;
    if (!AvcNalHeader::Parse(unit, size, header) || header.type != AvcNalHeader::PictureParameterSet)
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] & 31 : -1);
    BitReader bits(unit + 1, size - 1);
    AvcPictureParameterSet pps;
    pps.id = bits.ReadUE();
    if (pps.id > MaxId)
        return FieldCheck::Refuse(Where, "pic_parameter_set_id", pps.id);
    pps.sequenceSetId = bits.ReadUE();
    if (pps.sequenceSetId > AvcSequenceParameterSet::MaxId)
        return FieldCheck::Refuse(Where, "seq_parameter_set_id", pps.sequenceSetId);
    pps.entropyCodingCabac = bits.ReadFlag();
    pps.bottomFieldPicOrderInFramePresent = bits.ReadFlag();
    pps.numSliceGroups = bits.ReadUE() + 1;
    if (pps.numSliceGroups > 8)
        return FieldCheck::Refuse(Where, "num_slice_groups_minus1", int64_t(pps.numSliceGroups) - 1);
    int r = 0;
    if (pps.numSliceGroups > 1 && (r = SkipSliceGroupMap(bits, pps.numSliceGroups)) < 0)
        return r;
    pps.numRefIdxL0DefaultActive = bits.ReadUE() + 1;
    pps.numRefIdxL1DefaultActive = bits.ReadUE() + 1;
    if (pps.numRefIdxL0DefaultActive > 32 || pps.numRefIdxL1DefaultActive > 32)
        return FieldCheck::Refuse(Where, "num_ref_idx_default_active_minus1",
                                  int64_t(pps.numRefIdxL0DefaultActive > 32 ? pps.numRefIdxL0DefaultActive : pps.numRefIdxL1DefaultActive) - 1);
    pps.weightedPred = bits.ReadFlag();
    pps.weightedBipredIdc = uint8_t(bits.ReadBits(2));
    if (pps.weightedBipredIdc > 2)
        return FieldCheck::Refuse(Where, "weighted_bipred_idc", pps.weightedBipredIdc);
    // The lowest legal value depends on the bit depth; 14 bits allows -26 - 36.
    const int32_t qpOffset = bits.ReadSE();
    const int32_t qsOffset = bits.ReadSE();
    if (qpOffset < -62 || qpOffset > 25 || qsOffset < -26 || qsOffset > 25)
        return FieldCheck::Refuse(Where, "pic_init_qp/qs_minus26", qpOffset < -62 || qpOffset > 25 ? qpOffset : qsOffset);
    pps.picInitQp = 26 + qpOffset;
    pps.picInitQs = 26 + qsOffset;
    pps.chromaQpIndexOffset = bits.ReadSE();
    if (pps.chromaQpIndexOffset < -12 || pps.chromaQpIndexOffset > 12)
        return FieldCheck::Refuse(Where, "chroma_qp_index_offset", pps.chromaQpIndexOffset);
    pps.secondChromaQpIndexOffset = pps.chromaQpIndexOffset;
    pps.deblockingFilterControlPresent = bits.ReadFlag();
    pps.constrainedIntraPred = bits.ReadFlag();
    pps.redundantPicCntPresent = bits.ReadFlag();
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    if (bits.MoreRbspData()) {
        const AvcSequenceParameterSet* sps = sequenceSets ? sequenceSets[pps.sequenceSetId] : nullptr;
        if ((r = ParseTail(bits, sps, pps)) < 0)
            return r;
        if (bits.HasError())
            return FieldCheck::Truncated(Where);
    }
    out = pps;
    return 0;
}

} // namespace Quorvex::Vek
