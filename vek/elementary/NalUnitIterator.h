#pragma once

// Walks NAL units stored with a big-endian length in front of each (1, 2 or
// 4 bytes, as MP4 and Matroska samples hold them). Every length is checked
// against the bytes that remain; a lying length ends the walk with an error
// rather than a read past the sample.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API NalUnitIterator {
public:
    // `lengthBytes` other than 1, 2 or 4 makes every Next fail with -19003.
    NalUnitIterator(const uint8_t* data, size_t size, int lengthBytes);

    // 0 and the next unit (at least one byte), 1 at the end of the data,
    // RESULT_FORMAT_ERROR for a length of 0 or one past the end (the walk
    // then stays at its end), RESULT_ARGUMENT_OUT_OF_RANGE for a bad
    // length size.
    int Next(const uint8_t*& unit, size_t& unitSize);

private:
    const uint8_t* m_next;
    const uint8_t* m_end;
    int m_lengthBytes;
};

} // namespace Quorvex::Vek
