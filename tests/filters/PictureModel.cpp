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
    PictureModel model;
    model.width = width;
    model.height = height;
    model.sub = sub;
    const int cw = model.ChromaWidth();
    const int ch = model.ChromaHeight();
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> noise(0, 1);
    auto sample = [&](int col, int row) {
        return smooth ? uint8_t(Clamp(40 + col + 2 * row + noise(random), 0, 255)) : uint8_t(byte(random));
    };
    model.y.resize(size_t(width) * height);
    model.u.resize(size_t(cw) * ch);
    model.v.resize(size_t(cw) * ch);
    for (int row = 0; row < height; ++row)
        for (int col = 0; col < width; ++col)
            model.Y(col, row) = uint8_t(byte(random));
    for (int row = 0; row < ch; ++row) {
        for (int col = 0; col < cw; ++col) {
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

void Write(const PictureModel& in, const std::string& format, PictureBytes& picture)
{
    PictureModel model = in;
    uint8_t* base = picture.bytes.data();
    auto at = [&](int plane, int col, int row) -> uint8_t& {
        return base[picture.offset[plane] + size_t(row) * picture.stride[plane] + col];
    };
    if (IsPacked(format)) {
        const bool uyvy = format == "UYVY";
        for (int row = 0; row < model.height; ++row) {
            for (int pair = 0; pair < (model.width + 1) / 2; ++pair) {
                const uint8_t y0 = model.Y(2 * pair, row);
                const uint8_t y1 = 2 * pair + 1 < model.width ? model.Y(2 * pair + 1, row) : y0;
                const uint8_t bytes[4] = {uyvy ? model.U(pair, row) : y0, uyvy ? y0 : model.U(pair, row),
                                          uyvy ? model.V(pair, row) : y1, uyvy ? y1 : model.V(pair, row)};
                for (int i = 0; i < 4; ++i)
                    at(0, 4 * pair + i, row) = bytes[i];
            }
        }
        return;
    }
    for (int row = 0; row < model.height; ++row)
        for (int col = 0; col < model.width; ++col)
            at(0, col, row) = model.Y(col, row);
    const bool vFirst = VFirst(format);
    for (int row = 0; row < model.ChromaHeight(); ++row) {
        for (int col = 0; col < model.ChromaWidth(); ++col) {
            const uint8_t first = vFirst ? model.V(col, row) : model.U(col, row);
            const uint8_t second = vFirst ? model.U(col, row) : model.V(col, row);
            if (IsInterleaved(format)) {
                at(1, 2 * col, row) = first;
                at(1, 2 * col + 1, row) = second;
            } else {
                at(1, col, row) = first;
                at(2, col, row) = second;
            }
        }
    }
}

PictureModel Read(const std::string& format, int width, int height, const PictureBytes& picture)
{
    PictureModel model;
    model.width = width;
    model.height = height;
    model.sub = SubsamplingOf(format);
    model.y.resize(size_t(width) * height);
    model.u.resize(size_t(model.ChromaWidth()) * model.ChromaHeight());
    model.v.resize(model.u.size());
    const uint8_t* base = picture.bytes.data();
    auto at = [&](int plane, int col, int row) {
        return base[picture.offset[plane] + size_t(row) * picture.stride[plane] + col];
    };
    if (IsPacked(format)) {
        const bool uyvy = format == "UYVY";
        for (int row = 0; row < height; ++row) {
            for (int col = 0; col < width; ++col)
                model.Y(col, row) = at(0, 2 * col + (uyvy ? 1 : 0), row);
            for (int pair = 0; pair < model.ChromaWidth(); ++pair) {
                model.U(pair, row) = at(0, 4 * pair + (uyvy ? 0 : 1), row);
                model.V(pair, row) = at(0, 4 * pair + (uyvy ? 2 : 3), row);
            }
        }
        return model;
    }
    for (int row = 0; row < height; ++row)
        for (int col = 0; col < width; ++col)
            model.Y(col, row) = at(0, col, row);
    const bool vFirst = VFirst(format);
    for (int row = 0; row < model.ChromaHeight(); ++row) {
        for (int col = 0; col < model.ChromaWidth(); ++col) {
            const uint8_t first = IsInterleaved(format) ? at(1, 2 * col, row) : at(1, col, row);
            const uint8_t second = IsInterleaved(format) ? at(1, 2 * col + 1, row) : at(2, col, row);
            model.U(col, row) = vFirst ? second : first;
            model.V(col, row) = vFirst ? first : second;
        }
    }
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
    PictureModel out;
    out.width = in.width;
    out.height = in.height;
    out.sub = to;
    out.y = in.y;
    const int rows = out.ChromaHeight();
    for (auto [from, into] : {std::pair{&in.u, &out.u}, std::pair{&in.v, &out.v}}) {
        const Plane vertical = ResampleRows(*from, in.ChromaWidth(), in.ChromaHeight(), rows);
        *into = ResampleColumns(vertical, in.ChromaWidth(), out.ChromaWidth(), rows);
    }
    return out;
}

} // namespace VekTest
