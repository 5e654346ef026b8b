#pragma once

// The timecode track ('tmcd'): its sample description and the first sample,
// which gives the container's start timecode.
//
// A description's flags say how frame numbers count (drop frame, 24-hour
// wrap, negative times, counter); its time scale over its frame duration is
// the frame rate, and its frame count per second is the label's modulus. The
// first sample is a big-endian 32-bit frame number (or, with the counter
// flag, a counter value).
//
// ApplyStartTimeCode stores, in the container's bag:
//   ContainerProperty::TimeCode         the label as text, "HH:MM:SS:FF", with
//                                       ';' before the frames for drop frame
//                                       (CTimeCode's text form); a counter
//                                       track's value as decimal text.
//   ContainerProperty::MovTimeCodeMode  the flags, 4 bytes little-endian.
//   MovTimeCodeRate                     time scale, then frame duration: two
//                                       uint32 little-endian (8 bytes).
//   MovTimeCodeModulus                  frames per second, 1 byte.
// so that a host can rebuild the CTimeCode exactly:
//   CTimeCode(timeScale, frameDuration, modulus, mode & DropFrame) with the
//   label read from the text.
#include <cstddef>
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>

namespace Quorvex::Vek {

class IProperties;

struct MovTimeCodeDescription {
    enum : uint32_t { DropFrame = 1, Max24Hour = 2, NegativeTimes = 4, Counter = 8 };

    uint32_t flags;
    uint32_t timeScale;
    uint32_t frameDuration;
    uint8_t framesPerSecond;
};

// "mov.tmcd.rate": time scale and frame duration, uint32 little-endian each.
VEK_API extern const char* const MovTimeCodeRate;
// "mov.tmcd.modulus": the frames of one timecode second, one byte.
VEK_API extern const char* const MovTimeCodeModulus;

// The 'tmcd' sample description entry (its payload: reserved 6, data
// reference 2, reserved 4, flags 4, time scale 4, frame duration 4, frames
// per second 1, then a reserved byte and an optional 'name' atom that are
// not needed). 0, or RESULT_FORMAT_ERROR with a log line for an entry too
// short or with a zero rate or frame count.
VEK_API int ReadTimeCodeDescription(const MovBox& entry, MovTimeCodeDescription& description);

// Stores the start timecode given by the track's first sample (`size`
// bytes, at least 4). 0; RESULT_ARGUMENT_NULL for a null bag or sample;
// RESULT_FORMAT_ERROR (logged) for a short sample or a description that
// ReadTimeCodeDescription would refuse; RESULT_OUT_OF_MEMORY.
VEK_API int ApplyStartTimeCode(const MovTimeCodeDescription& description, const uint8_t* sample, size_t size,
                               IProperties* container);

} // namespace Quorvex::Vek
