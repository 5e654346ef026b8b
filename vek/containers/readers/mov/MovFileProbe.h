#pragma once

// Tells QuickTime movies from ISO media files (MP4, M4A, 3GP ...) by their
// first top-level boxes, so that each of the two readers can claim its own
// family and still read the other's.
//
// An 'ftyp' decides by its major brand: 'qt  ' is QuickTime, anything else
// is ISO. Files without 'ftyp' are old QuickTime movies when they start
// with an atom QuickTime writers put first ('moov', 'mdat', 'free', 'skip',
// 'wide', 'pnot'), and ISO segments when they start with 'styp', 'sidx' or
// 'moof'. The first boxes must also be well formed: sizes at least a
// header and within the file.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class CStream;

enum class MovFamily { None, QuickTime, Iso };

struct VEK_API MovFileProbe {
    // Reads the start of `stream` (positioned anywhere; left anywhere).
    static MovFamily Probe(CStream* stream);
    // The family a box sequence starting with `type` implies, before the
    // ftyp brand is known.
    static MovFamily FamilyOfFirstBox(uint32_t type);
};

} // namespace Quorvex::Vek
