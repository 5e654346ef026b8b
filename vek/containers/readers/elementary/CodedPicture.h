#pragma once

// One coded picture (an access unit) of a video elementary stream as its
// reader found it: where its bytes are, what kind of picture it is, and
// what orders it among its neighbours. The reader's presentation order
// fills in the two times.
#include <cstdint>

namespace Quorvex::Vek {

struct CodedPicture {
    int64_t position = 0; // first byte of the access unit in the file
    int32_t size = 0; // bytes
    int32_t pictureType = 0; // CVideoSample::I, P or B
    int32_t structure = 0; // CVideoSample::Frame, UpperField or LowerField
    int32_t duration = 0; // time-scale units this picture is shown for
    // The picture may start decoding (IDR, IRAP, an I-picture after a
    // sequence or GOP header).
    bool key = false;
    // A decoder drops the picture (a leading picture that refers to
    // pictures before the point where decoding started).
    bool exclude = false;
    // Output order restarts here: every earlier picture is shown before
    // this one and the ones after it (IDR, memory reset, POC reset at an
    // IRAP, a GOP header).
    bool startsPeriod = false;
    // Output order within a period (picture order count, temporal reference).
    int64_t displayKey = 0;

    // Filled by the presentation order.
    int64_t decodeTime = 0;
    int64_t presentationTime = 0;
    int64_t period = 0;
    int64_t decodeIndex = 0;
};

} // namespace Quorvex::Vek
