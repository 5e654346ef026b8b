#pragma once

// The walk over the top-level boxes of a QuickTime or ISO file, by their
// headers only: every payload the reader does not ask for ('mdat' above
// all) is passed by a seek, never read. The walk owns its stream, opened
// for it alone, so that waiting for a growing file never holds up the
// stream samples are read from.
//
// Following a file that is still written: when the stream waits for growth
// (its read wait time, "grto", is above 0) a read past the current end
// waits for the writer instead of coming up short. A box is then only
// handed on once it is whole, and a 'moof' only once the 'mdat' right
// after it is whole too, so a half-written fragment is never mistaken for
// damage. The walk ends when the file stops growing for the wait time; a
// box still short then is what a crashed writer left, and is dropped with
// a log line.
//
// Damage after the movie: a header that cannot be a box (a size below its
// header, a size past the largest offset, or a type that is not four
// printable characters) makes the walk resume at the next fragment: the
// next 'moof' the file's 'mfra' names, else the next "moof" tag whose first
// child is 'mfhd' within MaxResyncBytes. Before the movie was found the
// same header fails the walk.
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/core/CByteArray.h>
#include <vek/core/CollectionStorage.h>
#include <vek/core/RObject.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class VEK_API MovFileWalk {
public:
    enum : int64_t { MaxResyncBytes = int64_t(64) << 20 };
    enum : uint32_t { MaxPayloadBytes = 1u << 30 };

    MovFileWalk() = default;
    MovFileWalk(const MovFileWalk&) = delete;
    MovFileWalk& operator=(const MovFileWalk&) = delete;

    // Starts at the first byte of `stream` (one reference is taken);
    // `owner` names the reader in log lines.
    void Start(CStream* stream, const char* owner);

    // The next top-level box: 0 with its header (payload null); 1 at the
    // end of the walk; a code (logged) for a broken header before resuming
    // is allowed. `cut` is set for a box that ends past the end of the file
    // (a recording that stopped): only its header can be trusted.
    int Next(MovBox& header, bool& cut);
    // Reads the payload of the box Next returned into a new array; `box`
    // then points into it. 0; 1 when the file ended inside it (the walk
    // ends); a code (logged) for a payload above MaxPayloadBytes or a
    // failed read.
    int ReadPayload(const MovBox& header, RObject<CByteArray>& bytes, MovBox& box);

    // From here on a broken header resumes at the next fragment.
    void AllowResume() { m_resumeAllowed = true; }
    // A 'moof' offset the file's own index ('mfra') names; once all are
    // added, SortKnownFragments puts them in order.
    int AddKnownFragment(int64_t offset);
    void SortKnownFragments();
    // Ends the walk: nothing after this point is wanted.
    void Finish() { m_finished = true; }

    bool IsFinished() const { return m_finished; }
    bool IsFollowing() const { return m_following; }
    // The offset of the next box: the bytes walked so far.
    int64_t GetPosition() const { return m_position; }
    // The file's length as last seen (it grows while the walk follows).
    int64_t GetLength() const { return m_length; }
    // Bytes the walk has read from the stream.
    int64_t GetBytesRead() const { return m_bytesRead; }
    CStream* GetStream() const { return m_stream.Get(); }

private:
    enum : int32_t { PeekBytes = 512, HeaderBytes = 16, ScanBlock = 64 << 10 };

    int ReadAt(int64_t position, unsigned char* buffer, int32_t count);
    int Peek(int32_t count);
    int ParseHeader(MovBox& header, uint64_t& size);
    int Resume();
    int ScanForFragment(int64_t from, int64_t& found);
    bool WaitForFragmentData(const MovBox& moof);
    int DropCutBox(const MovBox& header);
    void RefreshLength();

    const char* m_owner = "";
    RObject<CStream> m_stream;
    int64_t m_position = 0;
    int64_t m_length = 0;
    int64_t m_bytesRead = 0;
    bool m_following = false;
    bool m_finished = false;
    bool m_resumeAllowed = false;
    uint32_t m_previousType = 0;
    // The bytes last read at m_peekAt, so a small box is read in one call.
    unsigned char m_peek[PeekBytes] = {};
    int32_t m_peeked = 0;
    int64_t m_peekAt = -1;
    Detail::GrowBuffer<int64_t> m_knownFragments; // ascending once sorted
};

} // namespace Quorvex::Vek
