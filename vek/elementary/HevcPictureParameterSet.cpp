#include <vek/elementary/HevcPictureParameterSet.h>

#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/HevcSequenceParameterSet.h>

namespace Quorvex::Vek {

namespace {
constexpr const char* Where = "HevcPictureParameterSet::Parse";
} // namespace

int HevcPictureParameterSet::Parse(const uint8_t* unit, size_t size, HevcPictureParameterSet& out)
{
    HevcNalHeader header;
    if (!HevcNalHeader::Parse(unit, size, header) || header.type != HevcNalHeader::PictureParameterSet)
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] >> 1 & 63 : -1);
    BitReader bits(unit + 2, size - 2);
    HevcPictureParameterSet pps;
    pps.id = bits.ReadUE();
    if (pps.id > MaxId)
        return FieldCheck::Refuse(Where, "pps_pic_parameter_set_id", pps.id);
    pps.sequenceSetId = bits.ReadUE();
    if (pps.sequenceSetId > HevcSequenceParameterSet::MaxId)
        return FieldCheck::Refuse(Where, "pps_seq_parameter_set_id", pps.sequenceSetId);
    pps.dependentSliceSegmentsEnabled = bits.ReadFlag();
    pps.outputFlagPresent = bits.ReadFlag();
    pps.numExtraSliceHeaderBits = bits.ReadBits(3);
    pps.signDataHiding = bits.ReadFlag();
    pps.cabacInitPresent = bits.ReadFlag();
    pps.numRefIdxL0DefaultActive = bits.ReadUE() + 1;
    pps.numRefIdxL1DefaultActive = bits.ReadUE() + 1;
    if (pps.numRefIdxL0DefaultActive > 15 || pps.numRefIdxL1DefaultActive > 15)
        return FieldCheck::Refuse(Where, "num_ref_idx_default_active_minus1",
                                  int64_t(pps.numRefIdxL0DefaultActive > 15 ? pps.numRefIdxL0DefaultActive : pps.numRefIdxL1DefaultActive) - 1);
    const int32_t qp = bits.ReadSE();
    // The lowest legal value depends on the bit depth; 16 bits allows -26 - 48.
    if (qp < -74 || qp > 25)
        return FieldCheck::Refuse(Where, "init_qp_minus26", qp);
    pps.initQp = 26 + qp;
    pps.constrainedIntraPred = bits.ReadFlag();
    pps.transformSkipEnabled = bits.ReadFlag();
    pps.cuQpDeltaEnabled = bits.ReadFlag();
    if (pps.cuQpDeltaEnabled)
        pps.diffCuQpDeltaDepth = bits.ReadUE();
    pps.cbQpOffset = bits.ReadSE();
    pps.crQpOffset = bits.ReadSE();
    if (pps.cbQpOffset < -12 || pps.cbQpOffset > 12 || pps.crQpOffset < -12 || pps.crQpOffset > 12)
        return FieldCheck::Refuse(Where, "pps_cb/cr_qp_offset", pps.cbQpOffset < -12 || pps.cbQpOffset > 12 ? pps.cbQpOffset : pps.crQpOffset);
    pps.sliceChromaQpOffsetsPresent = bits.ReadFlag();
    pps.weightedPred = bits.ReadFlag();
    pps.weightedBipred = bits.ReadFlag();
    pps.transquantBypassEnabled = bits.ReadFlag();
    pps.tilesEnabled = bits.ReadFlag();
    pps.entropyCodingSync = bits.ReadFlag();
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = pps;
    return 0;
}

} // namespace Quorvex::Vek
