#pragma once

// A small in-memory writer of the sample table and fragment boxes, and a
// box held with its bytes, for the sample table and fragment tests.
#include <vek/containers/readers/mov/MovBox.h>

#include "support/AudioFileBuilder.h"

#include <initializer_list>
#include <string>

namespace VekTest {

inline Bytes Join(std::initializer_list<Bytes> parts)
{
    Bytes joined;
    for (const Bytes& part : parts)
        joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

inline Bytes Box(const std::string& type, const Bytes& payload)
{
    ByteWriter writer(true);
    writer.U32(uint32_t(8 + payload.size())).Text(type).Append(payload);
    return writer.Get();
}

// A full box: version, flags and the body.
inline Bytes FullBox(const std::string& type, uint8_t version, uint32_t flags, const Bytes& body)
{
    ByteWriter writer(true);
    writer.U32(uint32_t(version) << 24 | (flags & 0xFFFFFF)).Append(body);
    return Box(type, writer.Get());
}

// A box parsed back from its bytes, which it keeps alive.
struct HeldBox {
    Bytes bytes;
    Quorvex::Vek::MovBox box;

    HeldBox(Bytes from, int64_t fileOffset = 0) : bytes(std::move(from))
    {
        Quorvex::Vek::MovBoxIterator walk(bytes.data(), bytes.size(), fileOffset, 0);
        walk.Next(box);
    }
    HeldBox(const HeldBox&) = delete;
};

} // namespace VekTest
