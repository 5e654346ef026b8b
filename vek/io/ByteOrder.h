#pragma once

// Byte orders of the typed binary readers and writers.
namespace Quorvex::Vek {

enum class ByteOrder {
    LittleEndian,
    BigEndian,
};

} // namespace Quorvex::Vek
