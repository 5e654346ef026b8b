#pragma once

// Typed, exact-length reads over a CStream for chunk parsers. Every read
// returns 0 on success or a negative result code, and stores its value
// only on success:
//   -19101 (RESULT_END_OF_STREAM) the stream ended before the value did;
//   the stream's own code when its read fails.
// After a failed read the stream is put back where the read started when
// it can seek, so a failure moves neither the position nor the output.
//
// Integers follow the reader's byte order; four-character codes are always
// big-endian (first character in the high byte), as Four() builds them.
#include <vek/core/Guid.h>
#include <vek/core/RObject.h>
#include <vek/io/ByteOrder.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class VEK_API CBinaryReader {
public:
    // Shares `stream` (one reference) for the reader's lifetime.
    explicit CBinaryReader(CStream* stream, ByteOrder order = ByteOrder::LittleEndian);

    ByteOrder GetByteOrder() const { return m_order; }
    void SetByteOrder(ByteOrder order) { m_order = order; }
    CStream* GetStream() const { return m_stream; }

    int ReadUInt8(uint8_t& value);
    int ReadInt8(int8_t& value);
    int ReadUInt16(uint16_t& value);
    int ReadInt16(int16_t& value);
    int ReadUInt24(uint32_t& value);
    int ReadInt24(int32_t& value);
    int ReadUInt32(uint32_t& value);
    int ReadInt32(int32_t& value);
    int ReadUInt64(uint64_t& value);
    int ReadInt64(int64_t& value);
    // An unsigned integer of 1 to 8 bytes; -19003 for another width.
    int ReadUInt(int byteCount, uint64_t& value);
    // The same, sign-extended from its top bit.
    int ReadInt(int byteCount, int64_t& value);

    int ReadFourCC(uint32_t& value);
    // 16 bytes laid out in `layout` (Windows for Microsoft formats such as
    // Wave64, BigEndian for MXF labels); independent of the reader's order.
    int ReadGuid(_Guid& value, GuidByteOrder layout = GuidByteOrder::Windows);
    int ReadFloat(float& value);
    int ReadDouble(double& value);
    // An IEEE 754 80-bit extended value (AIFF sample rates), as a double.
    int ReadExtended(double& value);

    // Exactly `count` bytes, or a failure with `buffer` unspecified.
    int ReadBytes(unsigned char* buffer, int32_t count);
    // Moves forward by `count` bytes through the stream's Seek.
    int Skip(int64_t count);

private:
    int ReadExact(unsigned char* buffer, int32_t count);

    RObject<CStream> m_stream;
    ByteOrder m_order;
};

} // namespace Quorvex::Vek
