#pragma once

// Public handle on a CBufferedStream, a block cache in front of another
// stream.
#include <vek/io/CBufferedStream.h>
#include <vek/io/Stream.h>

namespace Quorvex::Vek {

class VEK_API BufferedStream : public Stream {
public:
    BufferedStream() = default;
    // Adopts the caller's reference.
    BufferedStream(CBufferedStream* stream) : BaseObject(stream), Stream(stream) {}

    // A cache of `blockCount` blocks of `blockSize` bytes in front of
    // `inner` (which it shares). A null handle when out of memory.
    static BufferedStream Create(Stream inner, int blockSize, int blockCount);

    CBufferedStream* ToBufferedStream() const { return static_cast<CBufferedStream*>(m_object); }
};

} // namespace Quorvex::Vek
