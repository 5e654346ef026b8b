#pragma once

// Indexes of fragmented files: the segment index ('sidx') and the movie
// fragment random access boxes ('mfra' holding 'tfra' per track and ending
// with 'mfro'). Both are read into small bounded structures; entry counts
// are checked against the bytes of their box before anything is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/core/CollectionStorage.h>
#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct MovSegmentReference {
    bool referencesIndex = false; // the referenced bytes hold another 'sidx'
    uint32_t size = 0; // referenced bytes (31 bits)
    uint32_t duration = 0; // timescale units
    bool startsWithSap = false;
    uint8_t sapType = 0;
    uint32_t sapDeltaTime = 0; // 28 bits
};

struct MovSegmentIndex {
    uint32_t referenceId = 0;
    uint32_t timescale = 0;
    int64_t earliestPresentationTime = 0;
    // File offset of the first referenced byte: the byte after the 'sidx'
    // plus first_offset.
    int64_t firstOffset = 0;
    Detail::GrowBuffer<MovSegmentReference> references;
};

// Reads a 'sidx' (version 0 or 1) into an empty `index`. 0,
// RESULT_FORMAT_ERROR (logged) or RESULT_OUT_OF_MEMORY.
VEK_API int ReadSegmentIndex(const MovBox& sidx, MovSegmentIndex& index);

struct MovRandomAccessEntry {
    int64_t time = 0; // media units of the track
    int64_t moofOffset = 0; // file offset of the 'moof'
    uint32_t trafNumber = 0, trunNumber = 0, sampleNumber = 0; // 1-based
};

struct MovTrackRandomAccess {
    uint32_t trackId = 0;
    Detail::GrowBuffer<MovRandomAccessEntry> entries;
};

// Reads one 'tfra' (version 0 or 1, number fields of 1 to 4 bytes) into an
// empty `access`. 0, RESULT_FORMAT_ERROR (logged) or RESULT_OUT_OF_MEMORY.
VEK_API int ReadTrackFragmentRandomAccess(const MovBox& tfra, MovTrackRandomAccess& access);

// Reads an 'mfro' (the last 16 bytes of a file that has an 'mfra'): the
// size of the whole 'mfra', so a reader can find it from the end.
VEK_API int ReadMovieFragmentRandomAccessOffset(const MovBox& mfro, uint32_t& mfraSize);

} // namespace Quorvex::Vek
