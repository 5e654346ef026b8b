#pragma once

// The common part of readers of files that are a run of self-describing
// audio frames (ADTS, AC-3 and E-AC-3, MPEG audio): no container around
// them, only ID3v2 tags before and ID3v1 / APEv2 tags after, which are
// skipped.
//
// Validate: the file is taken when, within ProbeDistance bytes of the
// start (after ID3v2 tags), ChainFrames frames follow each other exactly by
// their own lengths and agree in their stream family, or a shorter chain
// ends exactly at the end of the file. A lone sync word is not enough. The
// scores stay below those of signature matches (WAV's 128) and of the
// container readers, so a file that merely carries such frames inside a
// container goes to the container's reader.
//
// BeginIndex walks every frame once (AudioFrameScanner, so garbage between
// frames is skipped with a bounded search and logged) and describes the
// track from the first frame (DescribeStream) and the totals
// (DescribeTotals); no table of frames is kept. ReadAudioSample cuts the
// same frames again in order: one access unit per sample, its bytes a
// container range over the frame with its header, its time the output
// frames before it at the sample rate.
//
// A header with a certain sync word that its parser refuses where a frame
// is expected fails BeginIndex with -19017; a file without a frame fails
// with -19017; a stream lost in garbage ends where the last frame ended.
#include <vek/containers/readers/AudioFrameScanner.h>
#include <vek/containers/readers/CAudioFileReader.h>

namespace Quorvex::Vek {

class VEK_API CAudioFrameFileReader : public CAudioFileReader {
public:
    enum : int32_t {
        // A chain of this many frames from the start.
        MatchScore = 100,
        // A chain found after leading garbage, or a short file's whole chain.
        WeakMatchScore = 75,
        ChainFrames = 4,
        ProbeDistance = 16 * 1024,
    };

    int Validate(CStream* stream) override;
    // The next access unit; 0 with a null sample at the end, -19007 for a
    // track other than 0. After a failure to make the sample (-19002) the
    // next call hands out the same unit.
    int ReadAudioSample(int32_t track, CAudioSample*& sample) override;

protected:
    // What the index pass counted.
    struct Totals {
        int64_t units = 0; // samples handed out
        int64_t frames = 0; // output frames of them all
        int64_t bytes = 0; // of them all
        int64_t start = 0; // first byte of the first unit
        int64_t end = 0; // just past the last one
    };

    CAudioFrameFileReader(uint32_t type, unsigned int flags);
    ~CAudioFrameFileReader() override;

    virtual const AudioFrameSyntax& GetSyntax() const = 0;
    // Fills GetAudio() from the first frame (`bytes`, the whole frame as
    // far as the window holds it). `holdsNoAudio` set: the frame is a tag
    // of the encoder (MP3's Xing/Info/VBRI), not a sample.
    virtual int DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                               bool& holdsNoAudio) = 0;
    // Sets what only the whole stream tells (the average bit rate unless
    // the subclass knows better). Called with the track's sample rate set.
    virtual int DescribeTotals(const Totals& totals);
    // Marks sample number `index` (its time and frames set) with hints and
    // trims; nothing by default.
    virtual int MarkSample(CAudioSample* /*sample*/, int64_t /*index*/) { return RESULT_OK; }

    int IndexHeader() override;
    const Totals& GetTotals() const { return m_totals; }
    // "CXxxContainerReader::BeginIndex" style owner text for log lines.
    virtual const char* GetIndexOwner() const = 0;
    virtual const char* GetReadOwner() const = 0;

private:
    // The bytes between the tags: [start, end).
    int FindFramedBytes(CStream* stream, int64_t length, int64_t& start, int64_t& end, const char* owner);
    // Frames chained from `offset`, up to ChainFrames; 0 when none starts there.
    int CountChain(AudioFrameScanner& scanner, int64_t offset, int32_t& frames, bool& reachesEnd);
    int IndexFrames(Totals& totals);
    int RewindForReading();
    // The sample of `unit`, number m_unitsRead at m_time.
    int BuildSample(const AudioFrame& unit, RObject<CAudioSample>& made);

    AudioFrameScanner m_scanner;
    Totals m_totals;
    uint64_t m_family = 0;
    int64_t m_unitsRead = 0;
    int64_t m_time = 0;
};

} // namespace Quorvex::Vek
