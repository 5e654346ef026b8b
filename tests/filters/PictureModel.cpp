#include "PictureModel.h"

#include <algorithm>
#include <stdexcept>

namespace VekTest {

namespace {

bool IsPacked(const std::string& format)
{
    return format == "UYVY" || format == "YUYV";
}

bool IsInterleaved(const std::string& format)
{
    return format == "NV12" || format == "NV21";
}

bool VFirst(const std::string& format)
{
    return format == "YV12" || format == "YV16" || format == "NV21";
}

int Clamp(int value, int low, int high)
{
    return std::min(std::max(value, low), high);
}

PictureModel Blank(int width, int height, Subsampling sub)
{
    PictureModel model{width, height, sub};
    model.y.resize(size_t(width) * height);
    model.u.resize(size_t(model.ChromaWidth()) * model.ChromaHeight());
    model.v.resize(model.u.size());
    return model;
}

} // namespace

Subsampling SubsamplingOf(const std::string& format)
{
    if (format == "I420" || format == "YV12" || format == "NV12" || format == "NV21")
        return {2, 2};
    if (format == "I422" || format == "YV16" || format == "UYVY" || format == "YUYV")
        return {2, 1};
    if (format == "I444")
        return {1, 1};
    throw std::invalid_argument("no model for " + format);
}

PictureModel RandomModel(int width, int height, Subsampling sub, std::mt19937& random, bool smooth)
{
    PictureModel model = Blank(width, height, sub);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> noise(0, 1);
    auto sample = [&](int col, int row) {
        return smooth ? uint8_t(Clamp(40 + col + 2 * row + noise(random), 0, 255)) : uint8_t(byte(random));
    };
    for (uint8_t& luma : model.y)
        luma = uint8_t(byte(random));
    for (int row = 0; row < model.ChromaHeight(); ++row) {
        for (int col = 0; col < model.ChromaWidth(); ++col) {
            model.U(col, row) = sample(col, row);
            model.V(col, row) = uint8_t(255 - sample(col, row));
        }
    }
    return model;
}

PictureBytes LayOut(const std::string& format, int width, int height, int stride0, uint8_t fill)
{
    const Subsampling sub = SubsamplingOf(format);
    const int cw = (width + sub.x - 1) / sub.x;
    const int ch = (height + sub.y - 1) / sub.y;
    PictureBytes picture;
    if (IsPacked(format)) {
        picture.planeCount = 1;
        picture.rowBytes[0] = 4 * ((width + 1) / 2);
    } else {
        picture.planeCount = IsInterleaved(format) ? 2 : 3;
        picture.rowBytes[0] = width;
        for (int p = 1; p < picture.planeCount; ++p)
            picture.rowBytes[p] = IsInterleaved(format) ? 2 * cw : cw;
    }
    picture.stride[0] = stride0 ? stride0 : picture.rowBytes[0];
    picture.rows[0] = height;
    for (int p = 1; p < picture.planeCount; ++p) {
        const int scaled = (picture.stride[0] + sub.x - 1) / sub.x;
        picture.stride[p] = IsInterleaved(format) ? 2 * scaled : scaled;
        picture.rows[p] = ch;
    }
    size_t total = 0;
    for (int p = 0; p < picture.planeCount; ++p) {
        picture.offset[p] = total;
        total += size_t(picture.stride[p]) * picture.rows[p];
    }
    picture.bytes.assign(total, fill);
    return picture;
}

namespace {

// Calls visit(byte, sample, repeat) for every sample of the model and the
// byte that holds it in `format`. The last luma of an odd packed row is
// visited twice, the second time for the byte that repeats it.
template <typename Visit>
void ForEachSample(const std::string& format, PictureBytes& picture, PictureModel& model, Visit visit)
{
    auto at = [&](int plane, int col, int row) -> uint8_t& {
        return picture.bytes[picture.offset[plane] + size_t(row) * picture.stride[plane] + col];
    };
    if (IsPacked(format)) {
        const bool uyvy = format == "UYVY";
        const int y = uyvy ? 1 : 0;
        for (int row = 0; row < model.height; ++row) {
            for (int col = 0; col < model.width; ++col)
                visit(at(0, 2 * col + y, row), model.Y(col, row), false);
            if (model.width % 2 == 1)
                visit(at(0, 2 * model.width + y, row), model.Y(model.width - 1, row), true);
            for (int pair = 0; pair < model.ChromaWidth(); ++pair) {
                visit(at(0, 4 * pair + (uyvy ? 0 : 1), row), model.U(pair, row), false);
                visit(at(0, 4 * pair + (uyvy ? 2 : 3), row), model.V(pair, row), false);
            }
        }
        return;
    }
    for (int row = 0; row < model.height; ++row)
        for (int col = 0; col < model.width; ++col)
            visit(at(0, col, row), model.Y(col, row), false);
    const bool interleaved = IsInterleaved(format);
    const bool vFirst = VFirst(format);
    for (int row = 0; row < model.ChromaHeight(); ++row) {
        for (int col = 0; col < model.ChromaWidth(); ++col) {
            visit(interleaved ? at(1, 2 * col, row) : at(1, col, row), vFirst ? model.V(col, row) : model.U(col, row),
                  false);
            visit(interleaved ? at(1, 2 * col + 1, row) : at(2, col, row),
                  vFirst ? model.U(col, row) : model.V(col, row), false);
        }
    }
}

} // namespace

void Write(const PictureModel& in, const std::string& format, PictureBytes& picture)
{
    PictureModel model = in;
    ForEachSample(format, picture, model, [](uint8_t& byte, uint8_t& sample, bool) { byte = sample; });
}

PictureModel Read(const std::string& format, int width, int height, PictureBytes picture)
{
    PictureModel model = Blank(width, height, SubsamplingOf(format));
    ForEachSample(format, picture, model, [](uint8_t& byte, uint8_t& sample, bool repeat) {
        if (!repeat)
            sample = byte;
    });
    return model;
}

namespace {

// One chroma plane as a width x height grid.
using Plane = std::vector<uint8_t>;

Plane ResampleRows(const Plane& in, int cw, int inRows, int outRows)
{
    Plane out(size_t(cw) * outRows);
    auto s = [&](int col, int row) { return int(in[size_t(Clamp(row, 0, inRows - 1)) * cw + col]); };
    for (int row = 0; row < outRows; ++row) {
        for (int col = 0; col < cw; ++col) {
            int value;
            if (outRows == inRows) {
                value = s(col, row);
            } else if (outRows > inRows) {
                // Chroma row k sits between picture rows 2k and 2k+1.
                const int k = row / 2;
                const int farther = row % 2 == 0 ? k - 1 : k + 1;
                value = (3 * s(col, k) + s(col, farther) + 2) / 4;
            } else if (2 * row + 1 < inRows) {
                value = (s(col, 2 * row) + s(col, 2 * row + 1) + 1) / 2;
            } else {
                value = s(col, 2 * row);
            }
            out[size_t(row) * cw + col] = uint8_t(value);
        }
    }
    return out;
}

Plane ResampleColumns(const Plane& in, int inWidth, int outWidth, int rows)
{
    Plane out(size_t(outWidth) * rows);
    for (int row = 0; row < rows; ++row) {
        auto s = [&](int col) { return int(in[size_t(row) * inWidth + Clamp(col, 0, inWidth - 1)]); };
        for (int col = 0; col < outWidth; ++col) {
            int value;
            if (outWidth == inWidth)
                value = s(col);
            else if (outWidth < inWidth)
                value = (s(2 * col - 1) + 2 * s(2 * col) + s(2 * col + 1) + 2) / 4;
            else if (col % 2 == 0)
                value = s(col / 2);
            else
                value = (s(col / 2) + s(col / 2 + 1) + 1) / 2;
            out[size_t(row) * outWidth + col] = uint8_t(value);
        }
    }
    return out;
}

} // namespace

PictureModel Resample(const PictureModel& in, Subsampling to)
{
    PictureModel out{in.width, in.height, to, in.y};
    const int rows = out.ChromaHeight();
    for (auto [from, into] : {std::pair{&in.u, &out.u}, std::pair{&in.v, &out.v}}) {
        const Plane vertical = ResampleRows(*from, in.ChromaWidth(), in.ChromaHeight(), rows);
        *into = ResampleColumns(vertical, in.ChromaWidth(), out.ChromaWidth(), rows);
    }
    return out;
}

} // namespace VekTest
