#include <vek/elementary/HevcVideoParameterSet.h>

#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>
#include <vek/elementary/HevcNalHeader.h>

namespace Quorvex::Vek {

namespace {
constexpr const char* Where = "HevcVideoParameterSet::Parse";
} // namespace

int HevcVideoParameterSet::Parse(const uint8_t* unit, size_t size, HevcVideoParameterSet& out)
{
    HevcNalHeader header;
    if (!HevcNalHeader::Parse(unit, size, header) || header.type != HevcNalHeader::VideoParameterSet)
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] >> 1 & 63 : -1);
    BitReader bits(unit + 2, size - 2);
    HevcVideoParameterSet vps;
    vps.id = uint8_t(bits.ReadBits(4));
    bits.SkipBits(2); // base layer internal and available flags
    vps.maxLayers = uint8_t(bits.ReadBits(6) + 1);
    const uint32_t subLayersMinus1 = bits.ReadBits(3);
    if (subLayersMinus1 > 6)
        return FieldCheck::Refuse(Where, "vps_max_sub_layers_minus1", subLayersMinus1);
    vps.maxSubLayers = uint8_t(subLayersMinus1 + 1);
    vps.temporalIdNesting = bits.ReadFlag();
    bits.SkipBits(16); // vps_reserved_0xffff_16bits
    HevcProfileTierLevel::Read(bits, subLayersMinus1, vps.profileTierLevel);
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = vps;
    return 0;
}

} // namespace Quorvex::Vek
