#pragma once

// The two supplemental enhancement messages of an AVC SEI unit (NAL unit
// type 6) that describe pictures rather than decoders: picture timing (its
// pic_struct: how many fields a picture is shown for) and the recovery
// point (decoding may start at a picture that is not IDR). Every other
// message is passed over. Parsing allocates nothing.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct AvcSequenceParameterSet;

struct VEK_API AvcSeiMessages {
    enum : uint8_t { MaxPicStruct = 8 };

    // pic_struct was present (the sequence set states it may be).
    bool hasPicStruct = false;
    uint8_t picStruct = 0; // 0 frame .. 8 frame tripling
    bool hasRecoveryPoint = false;
    uint32_t recoveryFrameCount = 0;
    bool brokenLink = false;

    // Fields shown for a pic_struct: 2 for a frame, 1 for a field, 3 with a
    // repeated field, 4 or 6 for a doubled or tripled frame.
    static int32_t FieldsOf(uint8_t picStruct);

    // Parses the unit, its one-byte NAL header included. `sps` is the
    // sequence set the picture timing refers to (the active one); without
    // it picture timing is passed over. The messages found before a
    // truncated or bad one are kept in `out`; the result is then
    // RESULT_FORMAT_ERROR with a log line naming the message and value.
    static int Parse(const uint8_t* unit, size_t size, const AvcSequenceParameterSet* sps, AvcSeiMessages& out);
};

} // namespace Quorvex::Vek
