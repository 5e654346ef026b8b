#pragma once

// The broadcast audio extension ("bext" in WAV, the bext chunk in Wave64):
// the EBU broadcast-wave description, originator, dates, time reference,
// UMID, loudness figures and coding history.
//
// Text fields, the UMID and the time reference describe the file and go to
// the container's bag; the five loudness figures describe the sound and go
// to the track's audio description. The 64-bit time reference (frames
// since midnight at the file's sample rate, the position a recorder
// stamped on the first frame) is stored under TimeReference as 8 bytes,
// little-endian, so that a host can place the file on its timeline.
#include <vek/io/CBinaryReader.h>
#include <vek/media/IProperties.h>

namespace Quorvex::Vek {

class VEK_API BroadcastAudioExtension {
public:
    BroadcastAudioExtension() = delete;

    enum : int32_t {
        // The fixed part before the coding history.
        FixedBytes = 602,
        // Coding history beyond this is not kept (a log line says so): it
        // is free text, and a lying chunk size must not size an allocation.
        MaxCodingHistoryBytes = 1 << 20,
    };

    // "wav.bext.time_reference": the time reference, int64 little-endian.
    static const char* const TimeReference;

    // Reads an extension whose chunk payload holds `size` bytes (the reader
    // stands at the payload) into the two bags. An extension shorter than
    // its fixed part is ignored with a warning. 0, the stream's code, or
    // the first failing store's code. `owner` begins the log lines.
    static int Read(CBinaryReader& reader, int64_t size, const char* owner, IProperties* container,
                    IProperties* audio);

    // Removes every key Read may have stored, for a reader whose index
    // pass failed after reading one.
    static void Remove(IProperties* container);
};

} // namespace Quorvex::Vek
