#pragma once

// Which HEVC pictures a decoder outputs. Most pictures are output, but a
// random access point that starts a new coded video sequence may empty the
// decoded picture buffer without output (a CRA after an end of sequence
// always does, an IDR or BLA when its no_output_of_prior_pics_flag says
// so), dropping the pictures still waiting there. Which ones wait depends
// on the buffer's output ("bumping") process, followed here: after each
// picture is decoded, the waiting picture of lowest picture order count is
// output while more than sps_max_num_reorder_pics wait; a sequence start
// outputs (or drops) every waiting picture. Output forced by a full buffer
// or by the latency limit is not followed: a stream that needs it is
// reordered by its reorder limit already, and dropping happens only at a
// sequence start.
//
// Fed the pictures in decode order, it decides each one's fate, and hands
// the decisions back in decode order. Holds at most Capacity pictures
// undecided; when full, the earliest is taken as output. No allocation.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API HevcPictureOutput {
public:
    enum : int32_t { Capacity = 64 };

    struct Picture {
        int64_t picOrderCount = 0;
        bool output = true; // PicOutputFlag: false for a skipped or not-output picture
        bool startsSequence = false; // an IRAP picture with NoRaslOutputFlag
        bool dropsWaiting = false; // NoOutputOfPriorPicsFlag of such a picture
        uint32_t maxReorder = 0; // sps_max_num_reorder_pics of its highest sub-layer
    };

    void Reset();
    // Room for Decode: call TakeDecided until there is.
    bool HasRoom() const { return m_count < Capacity; }
    // The next picture in decode order; false (nothing done) without room.
    bool Decode(const Picture& picture);
    // No more pictures: every waiting one is output.
    void Finish();
    // The fate of the earliest picture not yet taken: true and `output`
    // once it is decided (the picture is then forgotten), false while it
    // waits or when none is held. A full queue decides its earliest as output.
    bool TakeDecided(bool& output);
    int32_t GetCount() const { return m_count; }

private:
    enum State : uint8_t { Waiting, Output, Dropped };
    struct Entry {
        int64_t picOrderCount;
        State state;
    };

    Entry& At(int32_t index) { return m_ring[(m_first + index) % Capacity]; }
    void DecideWaiting(State state);
    void BumpBeyond(uint32_t maxWaiting);

    Entry m_ring[Capacity] = {};
    int32_t m_first = 0;
    int32_t m_count = 0;
    int32_t m_waiting = 0;
};

} // namespace Quorvex::Vek
