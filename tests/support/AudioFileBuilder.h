#pragma once

// Small writers of WAV, RF64, Wave64 and AIFF files in memory, for reader
// tests and fuzz seeds. Chunks are given as id and payload; sizes are
// written from the payload unless a test overrides them to lie.
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VekTest {

using Bytes = std::vector<uint8_t>;

class ByteWriter {
public:
    explicit ByteWriter(bool bigEndian = false) : m_bigEndian(bigEndian) {}

    ByteWriter& Int(uint64_t value, int width)
    {
        for (int i = 0; i < width; ++i) {
            const int shift = m_bigEndian ? 8 * (width - 1 - i) : 8 * i;
            m_bytes.push_back(uint8_t(value >> shift));
        }
        return *this;
    }
    ByteWriter& U16(uint32_t value) { return Int(value, 2); }
    ByteWriter& U32(uint32_t value) { return Int(value, 4); }
    ByteWriter& U64(uint64_t value) { return Int(value, 8); }
    ByteWriter& Text(const std::string& text)
    {
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        return *this;
    }
    // Text in a zero-filled field of `width` bytes.
    ByteWriter& Field(const std::string& text, size_t width)
    {
        Bytes field(width, 0);
        for (size_t i = 0; i < text.size() && i < width; ++i)
            field[i] = uint8_t(text[i]);
        return Append(field);
    }
    ByteWriter& Append(const Bytes& bytes)
    {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        return *this;
    }
    ByteWriter& Zeros(size_t count)
    {
        m_bytes.insert(m_bytes.end(), count, 0);
        return *this;
    }
    // A GUID in the Windows layout: Data1..Data3 little-endian.
    ByteWriter& Guid(uint32_t d1, uint16_t d2, uint16_t d3, const uint8_t (&d4)[8])
    {
        ByteWriter little(false);
        little.U32(d1).U16(d2).U16(d3);
        Append(little.Get());
        m_bytes.insert(m_bytes.end(), d4, d4 + 8);
        return *this;
    }
    const Bytes& Get() const { return m_bytes; }

private:
    bool m_bigEndian;
    Bytes m_bytes;
};

// Recognisable sound bytes: byte i of a data chunk.
inline Bytes Pattern(size_t count, uint8_t seed = 3)
{
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = uint8_t(i * 7 + seed + (i >> 8));
    return bytes;
}

struct Chunk {
    std::string id;
    Bytes payload;
    std::optional<uint64_t> size = std::nullopt; // the declared size, when it lies
};

// A WAVEFORMATEX record, or WAVEFORMATEXTENSIBLE when `mask` is given.
inline Bytes WaveFormat(uint16_t tag, uint16_t channels, uint32_t rate, uint16_t bits,
                        std::optional<uint32_t> mask = std::nullopt, uint16_t subTag = 1)
{
    const uint16_t blockAlign = uint16_t(channels * ((bits + 7) / 8));
    ByteWriter w;
    w.U16(mask ? 0xFFFE : tag).U16(channels).U32(rate).U32(rate * blockAlign).U16(blockAlign).U16(bits);
    if (mask) {
        static const uint8_t tail[8] = {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
        w.U16(22).U16(bits).U32(*mask).Guid(subTag, 0x0000, 0x0010, tail);
    }
    return w.Get();
}

// RIFF/RF64 file: every chunk padded to an even size.
inline Bytes Riff(const std::vector<Chunk>& chunks, const std::string& id = "RIFF", const std::string& form = "WAVE")
{
    ByteWriter body;
    body.Text(form);
    for (const Chunk& chunk : chunks) {
        body.Text(chunk.id).U32(uint32_t(chunk.size.value_or(chunk.payload.size()))).Append(chunk.payload);
        if (chunk.payload.size() % 2)
            body.Zeros(1);
    }
    ByteWriter file;
    file.Text(id).U32(id == "RF64" ? 0xFFFFFFFF : uint32_t(body.Get().size())).Append(body.Get());
    return file.Get();
}

// The Wave64 chunk GUIDs by their short names.
inline void Wave64Guid(ByteWriter& w, const std::string& name)
{
    static const uint8_t riffTail[8] = {0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00};
    static const uint8_t tail[8] = {0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A};
    if (name == "riff")
        w.Guid(0x66666972, 0x912E, 0x11CF, riffTail);
    else if (name == "wave")
        w.Guid(0x65766177, 0xACF3, 0x11D3, tail);
    else if (name == "fmt ")
        w.Guid(0x20746D66, 0xACF3, 0x11D3, tail);
    else if (name == "data")
        w.Guid(0x61746164, 0xACF3, 0x11D3, tail);
    else if (name == "bext")
        w.Guid(0x74786562, 0xACF3, 0x11D3, tail);
    else
        w.Guid(0x6B6E756A, 0xACF3, 0x11D3, tail); // any other: "junk"
}

// Wave64 file: sizes count the 24-byte header, chunks aligned to 8.
inline Bytes Wave64(const std::vector<Chunk>& chunks, std::optional<uint64_t> riffSize = std::nullopt)
{
    ByteWriter body;
    Wave64Guid(body, "wave");
    for (const Chunk& chunk : chunks) {
        Wave64Guid(body, chunk.id);
        body.U64(chunk.size.value_or(chunk.payload.size() + 24)).Append(chunk.payload);
        body.Zeros((8 - chunk.payload.size() % 8) % 8);
    }
    ByteWriter file;
    Wave64Guid(file, "riff");
    file.U64(riffSize.value_or(body.Get().size() + 24)).Append(body.Get());
    return file.Get();
}

// The 80-bit extended form of `rate`.
inline Bytes Extended(double rate)
{
    ByteWriter w(true);
    if (rate <= 0)
        return w.Zeros(10).Get();
    int exponent = 0;
    const double fraction = std::frexp(rate, &exponent); // rate = fraction * 2^exponent, fraction in [0.5, 1)
    const uint64_t mantissa = uint64_t(std::ldexp(fraction, 64));
    return w.U16(uint16_t(16383 + exponent - 1)).U64(mantissa).Get();
}

inline Bytes AiffCommon(uint16_t channels, uint32_t frames, uint16_t bits, double rate)
{
    ByteWriter w(true);
    return w.U16(channels).U32(frames).U16(bits).Append(Extended(rate)).Get();
}

inline Bytes AiffSound(const Bytes& sound, uint32_t offset = 0)
{
    ByteWriter w(true);
    return w.U32(offset).U32(0).Zeros(offset).Append(sound).Get();
}

// FORM file; chunks are written without pad bytes.
inline Bytes Aiff(const std::vector<Chunk>& chunks, const std::string& form = "AIFF")
{
    ByteWriter body(true);
    body.Text(form);
    for (const Chunk& chunk : chunks)
        body.Text(chunk.id).U32(uint32_t(chunk.size.value_or(chunk.payload.size()))).Append(chunk.payload);
    ByteWriter file(true);
    file.Text("FORM").U32(uint32_t(body.Get().size())).Append(body.Get());
    return file.Get();
}

} // namespace VekTest
