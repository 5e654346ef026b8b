#pragma once

// Cuts a byte range of a stream into self-describing audio frames (MPEG
// audio, ADTS, AC-3 and E-AC-3): each frame's header gives its length, so
// the next frame is expected where the last one ended. Bytes that are not a
// frame there are skipped by a bounded search for the next header that
// parses and is followed by another header (or the end of the range): a
// sync-like pattern inside garbage is not taken for a frame.
//
// The syntax of a coding is an AudioFrameSyntax the reader supplies; the
// scanner knows nothing of any coding. Frames whose family differs from
// the locked one (another layer, rate or channel set: another stream) are
// treated as garbage.
//
// Reads go through a window of the range held in one buffer made once, so
// cutting a frame costs no allocation. The stream's monitor is held for
// each fill. Not thread-safe: the owner serialises calls.
#include <cstdint>

#include <vek/core/CByteArray.h>
#include <vek/core/RObject.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

// A frame (or an access unit of several frames) found in the stream.
struct AudioFrame {
    int64_t offset = 0; // of its first byte in the stream
    int32_t bytes = 0; // header included
    int32_t frames = 0; // output frames (samples per channel) it decodes to
    uint64_t family = 0; // what frames of one stream share
};

class AudioFrameSyntax {
public:
    // Bytes from a frame's start that the calls below need.
    virtual int32_t GetHeaderBytes() const = 0;
    // Whether the bytes carry the coding's sync word, certain enough that
    // a refused header there is an error rather than garbage. Quiet.
    virtual bool HasSyncWord(const uint8_t* bytes) const = 0;
    // Whether a header that ParseFrame accepts, of a frame that may start
    // an access unit, starts there. Quiet: searches call it at every byte.
    virtual bool LooksLikeFrame(const uint8_t* bytes) const = 0;
    // Parses the header at `bytes` (`available` of them, at least
    // GetHeaderBytes()): 0 with the frame's length, output frames and
    // family, or -19017 with a log line naming the field.
    virtual int ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const = 0;
    // Whether the frame whose header is at `bytes` belongs to the access
    // unit that ends where it starts (E-AC-3 dependent substreams). Quiet.
    virtual bool ContinuesUnit(const uint8_t* /*bytes*/) const { return false; }

protected:
    ~AudioFrameSyntax() = default;
};

class VEK_API AudioFrameScanner {
public:
    enum : int32_t {
        // The window: room for any frame of the codings above several times.
        WindowBytes = 64 * 1024,
        // Frames an access unit may join (an independent E-AC-3 substream
        // with its dependent ones, times the eight programs).
        MaxUnitFrames = 8 * 16,
    };
    // How far one search may look past garbage before the stream is lost.
    static constexpr int64_t MaxResyncBytes = 256 * 1024;

    // `owner` prefixes every log line ("CAacContainerReader::ReadAudioSample").
    explicit AudioFrameScanner(const char* owner) : m_owner(owner) {}

    // Starts over on the bytes [start, end) of `stream` (borrowed: it must
    // outlive the scanner's use). Makes the window once; -19002 without
    // memory, -19003 for a range that is not one.
    int Reset(CStream* stream, int64_t start, int64_t end);
    // Only frames of `family` are taken from now on.
    void Lock(uint64_t family)
    {
        m_family = family;
        m_locked = true;
    }
    void SetOwner(const char* owner) { m_owner = owner; }
    // Quiet: skipped garbage and dropped frames are logged at level 5 only
    // (a second pass over bytes a first pass has reported). Errors are
    // always logged at level 1.
    void SetQuiet(bool quiet) { m_quiet = quiet; }

    // The next frame, or access unit, from the read position, which moves
    // past it. 0 with frame.bytes == 0 at the end of the range (a last
    // frame cut short is dropped with a level-2 line); -19017 when the
    // header where a frame is expected carries a sync word but is refused;
    // -19000 when a search finds no frame within MaxResyncBytes (the
    // position then stays, so the owner decides whether the stream ends);
    // or the stream's code.
    int Next(const AudioFrameSyntax& syntax, AudioFrame& frame);

    // `count` bytes at `offset` of the range, or fewer where it ends: the
    // window's memory, valid until the next call. 0 or the stream's code.
    int Peek(int64_t offset, int32_t count, const uint8_t*& bytes, int32_t& available);

    int64_t GetPosition() const { return m_position; }
    int64_t GetEnd() const { return m_end; }
    // Moves the read position (clamped to the range).
    void Seek(int64_t position);

private:
    // Whether a frame of the stream starts at `offset`: LooksLikeFrame,
    // the family and a parse.
    int TryFrame(const AudioFrameSyntax& syntax, int64_t offset, AudioFrame& frame, bool& found);
    int Resynchronise(const AudioFrameSyntax& syntax, int64_t& offset, AudioFrame& frame);
    // Whether the frame is followed by the end or by another header.
    int IsChained(const AudioFrameSyntax& syntax, const AudioFrame& frame, bool& chained);
    int JoinUnit(const AudioFrameSyntax& syntax, AudioFrame& frame);
    int Fill(int64_t offset);

    const char* m_owner;
    CStream* m_stream = nullptr;
    int64_t m_start = 0;
    int64_t m_end = 0;
    int64_t m_position = 0;
    bool m_locked = false;
    bool m_quiet = false;
    uint64_t m_family = 0;
    RObject<CByteArray> m_window;
    int64_t m_windowStart = 0;
    int32_t m_windowFill = 0;
};

} // namespace Quorvex::Vek
