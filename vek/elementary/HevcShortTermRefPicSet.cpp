#include <vek/elementary/HevcShortTermRefPicSet.h>

#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "HevcShortTermRefPicSet::Read";

struct Builder {
    HevcShortTermRefPicSet& set;
    uint32_t negative = 0;
    uint32_t positive = 0;
    bool overflow = false;

    void Negative(int32_t delta, bool used)
    {
        if (negative >= HevcShortTermRefPicSet::MaxPictures) {
            overflow = true;
            return;
        }
        set.deltaPocS0[negative] = delta;
        set.usedS0[negative++] = used;
    }
    void Positive(int32_t delta, bool used)
    {
        if (positive >= HevcShortTermRefPicSet::MaxPictures) {
            overflow = true;
            return;
        }
        set.deltaPocS1[positive] = delta;
        set.usedS1[positive++] = used;
    }
};

// A set described as the reference set shifted by deltaRps, with each
// picture kept or dropped; the order of the lists follows the derivation
// every decoder uses.
int ReadPredicted(BitReader& bits, uint32_t index, bool inSliceHeader, const HevcShortTermRefPicSet* sets,
                  HevcShortTermRefPicSet& out)
{
    uint32_t deltaIndex = 1;
    if (inSliceHeader) {
        deltaIndex = bits.ReadUE() + 1;
        if (deltaIndex > index)
            return FieldCheck::Refuse(Where, "delta_idx_minus1", int64_t(deltaIndex) - 1);
    }
    const HevcShortTermRefPicSet& ref = sets[index - deltaIndex];
    const bool negativeSign = bits.ReadFlag();
    const uint32_t absMinus1 = bits.ReadUE();
    if (absMinus1 > 32767)
        return FieldCheck::Refuse(Where, "abs_delta_rps_minus1", absMinus1);
    const int32_t deltaRps = (negativeSign ? -1 : 1) * int32_t(absMinus1 + 1);
    bool used[HevcShortTermRefPicSet::MaxPictures + 1] = {};
    bool useDelta[HevcShortTermRefPicSet::MaxPictures + 1] = {};
    const uint32_t count = ref.NumDeltaPocs();
    for (uint32_t j = 0; j <= count; ++j) {
        used[j] = bits.ReadFlag();
        useDelta[j] = used[j] ? true : bits.ReadFlag();
    }
    Builder b{out};
    for (int j = int(ref.numPositive) - 1; j >= 0; --j) {
        const int32_t d = ref.deltaPocS1[j] + deltaRps;
        if (d < 0 && useDelta[ref.numNegative + j])
            b.Negative(d, used[ref.numNegative + j]);
    }
    if (deltaRps < 0 && useDelta[count])
        b.Negative(deltaRps, used[count]);
    for (uint32_t j = 0; j < ref.numNegative; ++j) {
        const int32_t d = ref.deltaPocS0[j] + deltaRps;
        if (d < 0 && useDelta[j])
            b.Negative(d, used[j]);
    }
    for (int j = int(ref.numNegative) - 1; j >= 0; --j) {
        const int32_t d = ref.deltaPocS0[j] + deltaRps;
        if (d > 0 && useDelta[j])
            b.Positive(d, used[j]);
    }
    if (deltaRps > 0 && useDelta[count])
        b.Positive(deltaRps, used[count]);
    for (uint32_t j = 0; j < ref.numPositive; ++j) {
        const int32_t d = ref.deltaPocS1[j] + deltaRps;
        if (d > 0 && useDelta[ref.numNegative + j])
            b.Positive(d, used[ref.numNegative + j]);
    }
    if (b.overflow || b.negative + b.positive > HevcShortTermRefPicSet::MaxPictures)
        return FieldCheck::Refuse(Where, "predicted pictures", int64_t(b.negative) + b.positive);
    out.numNegative = uint8_t(b.negative);
    out.numPositive = uint8_t(b.positive);
    return 0;
}

int ReadExplicit(BitReader& bits, uint32_t maxPictures, HevcShortTermRefPicSet& out)
{
    const uint32_t negative = bits.ReadUE();
    const uint32_t positive = bits.ReadUE();
    if (negative > maxPictures || positive > maxPictures - negative)
        return FieldCheck::Refuse(Where, "num_negative_pics + num_positive_pics", int64_t(negative) + positive);
    int32_t poc = 0;
    for (uint32_t i = 0; i < negative; ++i) {
        const uint32_t minus1 = bits.ReadUE();
        if (minus1 > 32767)
            return FieldCheck::Refuse(Where, "delta_poc_s0_minus1", minus1);
        poc -= int32_t(minus1 + 1);
        out.deltaPocS0[i] = poc;
        out.usedS0[i] = bits.ReadFlag();
    }
    poc = 0;
    for (uint32_t i = 0; i < positive; ++i) {
        const uint32_t minus1 = bits.ReadUE();
        if (minus1 > 32767)
            return FieldCheck::Refuse(Where, "delta_poc_s1_minus1", minus1);
        poc += int32_t(minus1 + 1);
        out.deltaPocS1[i] = poc;
        out.usedS1[i] = bits.ReadFlag();
    }
    out.numNegative = uint8_t(negative);
    out.numPositive = uint8_t(positive);
    return 0;
}

} // namespace

int HevcShortTermRefPicSet::Read(BitReader& bits, uint32_t index, uint32_t setsInSequence,
                                 const HevcShortTermRefPicSet* sets, uint32_t maxPictures, HevcShortTermRefPicSet& out)
{
    if (maxPictures > MaxPictures)
        maxPictures = MaxPictures;
    out = HevcShortTermRefPicSet();
    const bool predicted = index != 0 && bits.ReadFlag();
    if (!predicted)
        return ReadExplicit(bits, maxPictures, out);
    // Predicted sets refer to earlier ones; only the slice-header form (index
    // == the sequence's count) may choose which.
    if (index > setsInSequence)
        return FieldCheck::Refuse(Where, "set index", index);
    return ReadPredicted(bits, index, index == setsInSequence, sets, out);
}

} // namespace Quorvex::Vek
