#include <vek/elementary/AvcSeiMessages.h>

#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcSeiMessages::Parse";

enum : uint32_t { PictureTiming = 1, RecoveryPoint = 6 };

// A message's type or size: a run of 255s and the byte that ends it. The
// cap keeps the sum far from overflow; no unit holds a message that long.
uint32_t ReadMessageNumber(BitReader& bits)
{
    uint32_t value = 0;
    for (int n = 0; n < 1 << 16 && !bits.HasError(); ++n) {
        const uint32_t byte = bits.ReadBits(8);
        value += byte;
        if (byte != 255)
            return value;
    }
    bits.SetError();
    return 0;
}

int ReadPictureTiming(BitReader& bits, const AvcSequenceParameterSet& sps, AvcSeiMessages& out)
{
    const AvcVideoUsability& vui = sps.vui;
    if (vui.nalHrdPresent || vui.vclHrdPresent) {
        bits.SkipBits(vui.cpbRemovalDelayBits);
        bits.SkipBits(vui.dpbOutputDelayBits);
    }
    if (!vui.picStructPresent)
        return 0;
    const uint32_t picStruct = bits.ReadBits(4);
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    if (picStruct > AvcSeiMessages::MaxPicStruct)
        return FieldCheck::Refuse(Where, "pic_struct", picStruct);
    out.hasPicStruct = true;
    out.picStruct = uint8_t(picStruct);
    return 0;
}

int ReadRecoveryPoint(BitReader& bits, AvcSeiMessages& out)
{
    const uint32_t count = bits.ReadUE();
    bits.SkipBits(1); // exact_match_flag
    const bool brokenLink = bits.ReadFlag();
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    // A count past the largest frame number cannot name a picture.
    if (count > 65535)
        return FieldCheck::Refuse(Where, "recovery_frame_cnt", count);
    out.hasRecoveryPoint = true;
    out.recoveryFrameCount = count;
    out.brokenLink = brokenLink;
    return 0;
}

} // namespace

int32_t AvcSeiMessages::FieldsOf(uint8_t picStruct)
{
    static const int8_t fields[MaxPicStruct + 1] = {2, 1, 1, 2, 2, 3, 3, 4, 6};
    return picStruct <= MaxPicStruct ? fields[picStruct] : 2;
}

int AvcSeiMessages::Parse(const uint8_t* unit, size_t size, const AvcSequenceParameterSet* sps, AvcSeiMessages& out)
{
    AvcNalHeader header;
    if (!AvcNalHeader::Parse(unit, size, header) || header.type != AvcNalHeader::Sei)
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] & 31 : -1);
    BitReader bits(unit + 1, size - 1);
    while (bits.MoreRbspData()) {
        const uint32_t type = ReadMessageNumber(bits);
        const uint32_t payloadSize = ReadMessageNumber(bits);
        if (bits.HasError())
            return FieldCheck::Truncated(Where);
        const uint64_t payloadStart = bits.BitsConsumed();
        // A message is kept only once it has kept within its size.
        AvcSeiMessages read = out;
        int result = 0;
        if (type == PictureTiming && sps)
            result = ReadPictureTiming(bits, *sps, read);
        else if (type == RecoveryPoint)
            result = ReadRecoveryPoint(bits, read);
        if (result < 0)
            return result;
        const uint64_t payloadEnd = payloadStart + uint64_t(payloadSize) * 8;
        if (bits.BitsConsumed() > payloadEnd)
            return FieldCheck::Refuse(Where, "payloadSize", payloadSize);
        out = read;
        bits.SkipBits(payloadEnd - bits.BitsConsumed());
        if (bits.HasError())
            return FieldCheck::Truncated(Where);
    }
    return 0;
}

} // namespace Quorvex::Vek
