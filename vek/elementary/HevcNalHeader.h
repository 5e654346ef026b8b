#pragma once

// The two-byte header of an HEVC NAL unit, and the picture kinds its type
// names (random access points and the leading pictures that follow them).
#include <cstddef>
#include <cstdint>

namespace Quorvex::Vek {

struct HevcNalHeader {
    enum Type : uint8_t {
        TrailN = 0,
        TrailR = 1,
        TsaN = 2,
        TsaR = 3,
        StsaN = 4,
        StsaR = 5,
        RadlN = 6,
        RadlR = 7,
        RaslN = 8,
        RaslR = 9,
        BlaWithLeading = 16,
        BlaWithRadl = 17,
        BlaNoLeading = 18,
        IdrWithRadl = 19,
        IdrNoLeading = 20,
        Cra = 21,
        LastIrap = 23,
        VideoParameterSet = 32,
        SequenceParameterSet = 33,
        PictureParameterSet = 34,
        AccessUnitDelimiter = 35,
        EndOfSequence = 36,
        EndOfBitstream = 37,
        FillerData = 38,
        PrefixSei = 39,
        SuffixSei = 40,
    };

    uint8_t type = 0;
    uint8_t layerId = 0;
    uint8_t temporalId = 0; // nuh_temporal_id_plus1 - 1

    // False for fewer than two bytes, a set forbidden bit or a temporal id
    // field of 0.
    static bool Parse(const uint8_t* unit, size_t size, HevcNalHeader& out)
    {
        if (!unit || size < 2 || (unit[0] & 0x80) != 0 || (unit[1] & 7) == 0)
            return false;
        out.type = uint8_t(unit[0] >> 1 & 63);
        out.layerId = uint8_t((unit[0] & 1) << 5 | unit[1] >> 3);
        out.temporalId = uint8_t((unit[1] & 7) - 1);
        return true;
    }

    static bool IsSlice(uint8_t type) { return type <= RaslR || (type >= BlaWithLeading && type <= Cra); }
    static bool IsIrap(uint8_t type) { return type >= BlaWithLeading && type <= LastIrap; }
    static bool IsIdr(uint8_t type) { return type == IdrWithRadl || type == IdrNoLeading; }
    static bool IsBla(uint8_t type) { return type >= BlaWithLeading && type <= BlaNoLeading; }
    static bool IsRasl(uint8_t type) { return type == RaslN || type == RaslR; }
    static bool IsRadl(uint8_t type) { return type == RadlN || type == RadlR; }
    // Sub-layer non-reference pictures: the even types below 16.
    static bool IsSubLayerNonReference(uint8_t type) { return type < 16 && (type & 1) == 0; }
};

} // namespace Quorvex::Vek
