#pragma once

// Movie fragments: the per-track defaults of 'mvex' and the sample runs of
// each 'moof', appended to the tracks' sample tables.
//
// A fragment's samples take their description index, duration, size and
// flags from the run ('trun') when it carries them per sample, else from
// the track fragment header ('tfhd'), else from the track's 'trex'. Data
// offsets follow the usual rule: an explicit base-data-offset wins; else
// default-base-is-moof makes it the moof's first byte; else the first traf
// starts from the moof's first byte and each later traf from the end of the
// data of the traf before it. A run without a data offset continues where
// the previous run of its traf ended.
#include <cstddef>
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class MovSampleTable;

struct MovTrackDefaults { // 'trex'
    uint32_t descriptionIndex = 1, duration = 0, size = 0, flags = 0;
};

struct MovFragmentTrack {
    uint32_t trackId;
    MovTrackDefaults defaults;
    MovSampleTable* table;
};

// Reads the 'trex' boxes of an 'mvex' into the matching tracks' defaults;
// 'trex' of unknown tracks are ignored. 0, or RESULT_FORMAT_ERROR (logged)
// for a 'trex' too short for its fields.
VEK_API int ReadMovieExtends(const MovBox& mvex, MovFragmentTrack* tracks, size_t trackCount);

// Reads one 'moof' (box in memory; box.fileOffset is the moof's first byte
// in the file) and appends each 'traf's runs to its track's table. A traf
// of an unknown track is skipped with a log line. `fileSize` bounds the
// data: a run whose data lies past it is refused with RESULT_FORMAT_ERROR
// and a log line, nothing of that traf is appended and the trafs before it
// are kept. A run holds at most MaxFragmentRunSamples samples.
constexpr uint32_t MaxFragmentRunSamples = 1u << 24;
VEK_API int ReadMovieFragment(const MovBox& moof, MovFragmentTrack* tracks, size_t trackCount, int64_t fileSize);

} // namespace Quorvex::Vek
