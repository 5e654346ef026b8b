#pragma once

// Public wrapper of CCompressorVariant: one output rendition of a fan-out compressor.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/VideoFilter.h>
#include <vek/filters/CCompressorVariant.h>

namespace Quorvex::Vek {

class VEK_API CompressorVariant : public VideoFilter {
public:
    CompressorVariant() = default;
    // Adopts the caller's reference.
    CompressorVariant(CCompressorVariant* object) : BaseObject(object) {}
    // A variant producing `output` (shared); null for a null description.
    static CompressorVariant Create(const VideoProperties& output);
    // A wrapper sharing `object` (its count goes up by one).
    static CompressorVariant FromObject(CCompressorVariant* object);

    CCompressorVariant* ToCompressorVariant() const { return static_cast<CCompressorVariant*>(ToObject()); }

};

} // namespace Quorvex::Vek
