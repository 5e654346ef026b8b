#include <cmath>

#include <vek/filters/VideoConfiguration.h>

namespace Quorvex::Vek {

namespace {

// The description's facts in the table's terms; all zero without one.
struct DescribedVideo {
    int64_t width = 0;
    int64_t height = 0;
    int64_t aspectNumerator = 0;
    int64_t aspectDenominator = 0;
    int64_t subsampling = 0;
    int64_t colorSpace = 0;
    int64_t rateNumerator = 0;
    int64_t rateDenominator = 0;
    int64_t fieldOrder = 0;
    int64_t bitRate = 0;
    int64_t format = 0;
};

DescribedVideo Describe(const CVideoProperties* description)
{
    DescribedVideo facts;
    if (!description)
        return facts;
    facts.width = description->GetWidth();
    facts.height = description->GetHeight();
    description->GetPixelAspectRatio(facts.aspectNumerator, facts.aspectDenominator);
    int32_t horizontal = 0;
    int32_t vertical = 0;
    description->GetSubsampling(horizontal, vertical);
    facts.subsampling = VideoSubsampling(uint32_t(horizontal), uint32_t(vertical));
    facts.colorSpace = description->GetColorSpace();
    description->GetFrameRate(facts.rateNumerator, facts.rateDenominator);
    facts.fieldOrder = description->GetFieldOrder();
    facts.bitRate = description->GetBitRate();
    facts.format = description->GetFormat();
    return facts;
}

bool Contradicts(int64_t table, int64_t described)
{
    return table != 0 && described != 0 && table != described;
}

bool RatesContradict(const VideoConfigurationHalf& half, const DescribedVideo& facts)
{
    if (half.frameRateNumerator && half.frameRateDenominator && facts.rateNumerator && facts.rateDenominator) {
        const double table = double(half.frameRateNumerator) / double(half.frameRateDenominator);
        const double described = double(facts.rateNumerator) / double(facts.rateDenominator);
        return std::fabs(table - described) > 0.01;
    }
    return Contradicts(half.frameRateNumerator, facts.rateNumerator) ||
           Contradicts(half.frameRateDenominator, facts.rateDenominator);
}

} // namespace

bool MatchesVideoConfiguration(const VideoConfigurationHalf& half, const CVideoProperties* description)
{
    const DescribedVideo facts = Describe(description);
    if (half.format != 0 && int64_t(half.format) != facts.format)
        return false;
    return !Contradicts(half.width, facts.width) && !Contradicts(half.height, facts.height) &&
           !Contradicts(half.pixelAspectNumerator, facts.aspectNumerator) &&
           !Contradicts(half.pixelAspectDenominator, facts.aspectDenominator) &&
           !Contradicts(half.subsampling, facts.subsampling) && !Contradicts(half.colorSpace, facts.colorSpace) &&
           !RatesContradict(half, facts) && !Contradicts(half.fieldOrder, facts.fieldOrder) &&
           !Contradicts(int32_t(half.bitRate), facts.bitRate);
}

} // namespace Quorvex::Vek
