#include <vek/elementary/SampleAspectRatio.h>

namespace Quorvex::Vek {

namespace {

constexpr uint16_t Ratios[17][2] = {
    {0, 0}, {1, 1}, {12, 11}, {10, 11}, {16, 11}, {40, 33}, {24, 11}, {20, 11}, {32, 11},
    {80, 33}, {18, 11}, {15, 11}, {64, 33}, {160, 99}, {4, 3}, {3, 2}, {2, 1},
};

} // namespace

bool SampleAspectRatio::FromIndex(uint32_t index, SampleAspectRatio& out)
{
    if (index >= 17)
        return false;
    out.width = Ratios[index][0];
    out.height = Ratios[index][1];
    return true;
}

} // namespace Quorvex::Vek
