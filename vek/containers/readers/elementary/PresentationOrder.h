#pragma once

// Gives pictures that arrive in decode order their decode and presentation
// times, so that presentation order is the order a decoder outputs them.
//
// The rule: decode times run from 0 in decode order, each picture adding
// its duration. Within a period (see CodedPicture::startsPeriod) pictures
// are shown in ascending display key; every picture of a period is shown
// after every picture of the periods before it. Presentation times run in
// that order, each picture adding its duration, from a start delay chosen
// once: the smallest delay that keeps every picture of the first window
// (Window pictures, or the whole stream when shorter) shown no earlier
// than it is decoded, and at least the reorder delay the stream declares.
// A later picture that would still be shown before it is decoded keeps a
// negative composition offset (logged once).
//
// A picture's place in output order is final once Window later pictures
// are known, or its period has ended: a conforming stream cannot reorder
// further than its decoded-picture buffer (at most 16 frames, 32 fields).
//
// No allocation after construction; not thread-safe.
#include <cstdint>

#include <vek/containers/readers/elementary/CodedPicture.h>
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API PresentationOrder {
public:
    enum : int32_t { Window = 40, Capacity = Window + 8 };

    // Starts over; `declaredDelay` in time-scale units (0 when unknown).
    void Reset(int64_t declaredDelay = 0);
    // Room for one more picture (Push may be called).
    bool HasRoom() const { return m_count < Capacity; }
    // Appends the next picture in decode order; false when full.
    bool Push(const CodedPicture& picture);
    // No more pictures will come: every held picture can be placed.
    void Finish();
    // The earliest held picture in decode order with both times, removed;
    // false when it cannot be placed yet (push more or Finish) or none is held.
    bool Pop(CodedPicture& picture);
    // Pictures held.
    int32_t GetCount() const { return m_count; }
    // Decode time the next pushed picture gets (the total pushed duration).
    int64_t GetDecodeClock() const { return m_decodeClock; }

private:
    CodedPicture& At(int32_t index) { return m_ring[(m_first + index) % Capacity]; }
    // Index of the unplaced picture shown first, or -1.
    int32_t FindNextShown();
    bool CanPlace(int32_t index);
    void PlaceReady();
    void ChooseStartDelay();

    CodedPicture m_ring[Capacity];
    bool m_placed[Capacity] = {};
    int32_t m_first = 0;
    int32_t m_count = 0;
    int64_t m_decodeClock = 0;
    int64_t m_presentClock = 0;
    int64_t m_period = 0;
    int64_t m_pushed = 0;
    int64_t m_declaredDelay = 0;
    bool m_delayChosen = false;
    bool m_finished = false;
    bool m_warnedEarly = false;
};

} // namespace Quorvex::Vek
