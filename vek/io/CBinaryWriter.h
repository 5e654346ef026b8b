#pragma once

// Typed writes over a CStream, the counterpart of CBinaryReader. Every
// write returns 0 when all bytes went out, the stream's negative code when
// its write failed, or -19100 (RESULT_IO_ERROR) when it took fewer bytes.
//
// Integers follow the writer's byte order; four-character codes are always
// written big-endian.
#include <vek/core/Guid.h>
#include <vek/core/RObject.h>
#include <vek/io/ByteOrder.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class VEK_API CBinaryWriter {
public:
    // Shares `stream` (one reference) for the writer's lifetime.
    explicit CBinaryWriter(CStream* stream, ByteOrder order = ByteOrder::LittleEndian);

    ByteOrder GetByteOrder() const { return m_order; }
    void SetByteOrder(ByteOrder order) { m_order = order; }
    CStream* GetStream() const { return m_stream; }

    int WriteUInt8(uint8_t value) { return WriteUInt(1, value); }
    int WriteInt8(int8_t value) { return WriteUInt(1, uint64_t(value)); }
    int WriteUInt16(uint16_t value) { return WriteUInt(2, value); }
    int WriteInt16(int16_t value) { return WriteUInt(2, uint64_t(value)); }
    int WriteUInt24(uint32_t value) { return WriteUInt(3, value); }
    int WriteInt24(int32_t value) { return WriteUInt(3, uint64_t(value)); }
    int WriteUInt32(uint32_t value) { return WriteUInt(4, value); }
    int WriteInt32(int32_t value) { return WriteUInt(4, uint64_t(value)); }
    int WriteUInt64(uint64_t value) { return WriteUInt(8, value); }
    int WriteInt64(int64_t value) { return WriteUInt(8, uint64_t(value)); }
    // The low `byteCount` (1 to 8) bytes of `value`; -19003 for another width.
    int WriteUInt(int byteCount, uint64_t value);

    int WriteFourCC(uint32_t value);
    // 16 bytes laid out in `layout`, independent of the writer's order.
    int WriteGuid(const _Guid& value, GuidByteOrder layout = GuidByteOrder::Windows);
    int WriteFloat(float value);
    int WriteDouble(double value);
    // An IEEE 754 80-bit extended value (AIFF sample rates).
    int WriteExtended(double value);
    int WriteBytes(const unsigned char* buffer, int32_t count);

private:
    RObject<CStream> m_stream;
    ByteOrder m_order;
};

} // namespace Quorvex::Vek
