#pragma once

// The 'esds' atom of MP4 sample entries: the ES descriptor's decoder
// configuration (object type, bit rates) and its decoder specific info,
// which is the AudioSpecificConfig of AAC or the headers of MPEG-4 Visual.
// Descriptor lengths are checked against their parent descriptor, so a
// lying length stops at the atom's end.
#include <cstddef>
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>

namespace Quorvex::Vek {

struct VEK_API MovElementaryStreamDescriptor {
    uint8_t objectType = 0; // objectTypeIndication
    uint8_t streamType = 0;
    uint32_t maxBitRate = 0;
    uint32_t averageBitRate = 0;
    const uint8_t* specificInfo = nullptr; // inside the atom; null when absent
    size_t specificInfoSize = 0;

    // Reads the payload of an 'esds' atom. 0, or RESULT_FORMAT_ERROR with a
    // log line naming the descriptor and its length.
    static int Read(const MovBox& esds, MovElementaryStreamDescriptor& out);
};

} // namespace Quorvex::Vek
