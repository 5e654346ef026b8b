#pragma once

// The one-byte header of an AVC NAL unit.
#include <cstddef>
#include <cstdint>

namespace Quorvex::Vek {

struct AvcNalHeader {
    enum Type : uint8_t {
        NonIdrSlice = 1,
        PartitionA = 2,
        IdrSlice = 5,
        Sei = 6,
        SequenceParameterSet = 7,
        PictureParameterSet = 8,
        AccessUnitDelimiter = 9,
        EndOfSequence = 10,
        EndOfStream = 11,
        FillerData = 12,
        SequenceParameterSetExtension = 13,
        Prefix = 14,
        SubsetSequenceParameterSet = 15,
        AuxiliarySlice = 19,
        ExtensionSlice = 20,
    };

    uint8_t refIdc = 0; // 0 when no later picture refers to this one
    uint8_t type = 0;

    // False for an empty unit or a set forbidden bit.
    static bool Parse(const uint8_t* unit, size_t size, AvcNalHeader& out)
    {
        if (!unit || size < 1 || (unit[0] & 0x80) != 0)
            return false;
        out.refIdc = uint8_t(unit[0] >> 5 & 3);
        out.type = uint8_t(unit[0] & 31);
        return true;
    }

    bool IsSlice() const { return type == NonIdrSlice || type == IdrSlice; }
};

} // namespace Quorvex::Vek
