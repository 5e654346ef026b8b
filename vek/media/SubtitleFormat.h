#pragma once

// Identifiers of subtitle and caption codings, with a small description
// table: display names, and parents for the codes that are a variant or a
// sample-entry alias of another (CEA-608 field streams under 'c608', the MP4
// sample entries 'stpp' and 'wvtt' under TTML and WebVTT, DFXP under TTML).
//
// GetEquivalentFormat gives another code for the same text or caption data:
// an unnamed alias gives its parent, a named entry its first alias ('vtt '
// <-> 'wvtt', 'ttml' -> 'stpp'); DFXP, the draft name of TTML, gives 'ttml'.
// A code with no equivalent gives 0.
#include <cstddef>

#include <vek/media/FormatDescription.h>

namespace Quorvex::Vek {

class VEK_API SubtitleFormat {
public:
    static constexpr uint32_t Unknown = 0x00000000;
    static constexpr uint32_t BMAP = Four("bmap");
    static constexpr uint32_t C608 = Four("c608");
    static constexpr uint32_t C618 = Four("c618");
    static constexpr uint32_t C628 = Four("c628");
    static constexpr uint32_t C708 = Four("c708");
    static constexpr uint32_t DFXP = Four("dfxp");
    static constexpr uint32_t DVB = Four("dvbs");
    static constexpr uint32_t PNG = Four("png ");
    static constexpr uint32_t SCC = Four("scc ");
    static constexpr uint32_t TTML = Four("ttml");
    static constexpr uint32_t VTT = Four("vtt ");

    // The display name, or null for a code outside the table.
    static const char* GetName(unsigned int format);

    // The root of the code's parent chain; 0 for a code outside the table.
    static unsigned int GetCanonicalFormat(unsigned int format);

    // Another code for the same data (see above), or 0.
    static unsigned int GetEquivalentFormat(unsigned int format);

    // The description table in table order, ended by an entry whose code is 0.
    static const FormatDescription* GetDescriptions();

    // Every constant above as (name, code); GetConstantCount() of them.
    static const FormatConstant* GetConstants();
    static size_t GetConstantCount();
};

} // namespace Quorvex::Vek
