#pragma once

// The test's own picture model: luma and two full chroma planes as plain
// arrays, written to and read from the bytes of each layout by explicit
// byte positions, independent of the library's layout table. Also the
// documented chroma filters, written out sample by sample, as the
// reference the converter must match exactly.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace VekTest {

// The four-character code of a format name held at run time.
inline uint32_t Code(const std::string& format)
{
    return uint32_t(uint8_t(format[0])) << 24 | uint32_t(uint8_t(format[1])) << 16 | uint32_t(uint8_t(format[2])) << 8 |
           uint8_t(format[3]);
}

struct Subsampling {
    int x; // luma samples per chroma sample across: 1 or 2
    int y; // and down
    bool operator==(const Subsampling&) const = default;
};

struct PictureModel {
    int width = 0;
    int height = 0;
    Subsampling sub{1, 1};
    std::vector<uint8_t> y, u, v;

    int ChromaWidth() const { return (width + sub.x - 1) / sub.x; }
    int ChromaHeight() const { return (height + sub.y - 1) / sub.y; }
    uint8_t& Y(int col, int row) { return y[size_t(row) * width + col]; }
    uint8_t& U(int col, int row) { return u[size_t(row) * ChromaWidth() + col]; }
    uint8_t& V(int col, int row) { return v[size_t(row) * ChromaWidth() + col]; }
    bool operator==(const PictureModel&) const = default;
};

// The subsampling a format code stands for.
Subsampling SubsamplingOf(const std::string& format);

// Random samples (smooth when asked: gentle ramps with little noise).
PictureModel RandomModel(int width, int height, Subsampling sub, std::mt19937& random, bool smooth = false);

// Bytes of one layout: planes back to back, each row padded to its
// stride; stride0 is the first plane's stride (0: tight), the others
// follow from it by the rule of the contiguous input view. Padding bytes
// hold `fill`.
struct PictureBytes {
    std::vector<uint8_t> bytes;
    int planeCount = 0;
    size_t offset[3] = {};
    int stride[3] = {};
    int rowBytes[3] = {};
    int rows[3] = {};
};

PictureBytes LayOut(const std::string& format, int width, int height, int stride0, uint8_t fill);
void Write(const PictureModel& model, const std::string& format, PictureBytes& picture);
PictureModel Read(const std::string& format, int width, int height, PictureBytes picture);

// The documented resampling, from one model's chroma to another
// subsampling: rows first (3/4 + 1/4 up, pair means down), then across
// (co-sited: [1 2 1]/4 down, copies and neighbour means up). Luma is
// copied.
PictureModel Resample(const PictureModel& in, Subsampling to);

} // namespace VekTest
