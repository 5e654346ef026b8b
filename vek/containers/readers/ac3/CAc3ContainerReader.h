#pragma once

// The reader of raw AC-3 (.ac3) and E-AC-3 (.eac3, .ec3) streams: one audio
// track, one access unit per sample. An AC-3 unit is one sync frame of
// 1536 output frames; an E-AC-3 unit is an independent substream frame with
// the dependent (and further independent) substream frames that follow it,
// of 256, 512, 768 or 1536 output frames by its numblkscod.
//
// The track's format is AudioFormat::AC3 or AudioFormat::EC3; its
// channels are those of the whole first unit (a dependent substream's
// channel map adds its speakers to the independent substream's); its
// decoder configuration (AudioProperty::DecoderConfiguration) is the
// 'dac3' or 'dec3' payload an MP4 track of the same frames carries. The
// bit rate is the stream's average.
//
// Probing, tags, resynchronisation and damage: see CAudioFrameFileReader.
#include <vek/containers/readers/CAudioFrameFileReader.h>
#include <vek/containers/readers/ac3/Ac3FrameSyntax.h>

namespace Quorvex::Vek {

class VEK_API CAc3ContainerReader : public CAudioFrameFileReader {
public:
    enum : uint32_t { Type = Four("ac3 ") };

    CAc3ContainerReader();
    explicit CAc3ContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "AC-3"; }

protected:
    ~CAc3ContainerReader() override;

    const AudioFrameSyntax& GetSyntax() const override { return m_syntax; }
    int DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                       bool& holdsNoAudio) override;
    const char* GetIndexOwner() const override { return "CAc3ContainerReader::BeginIndex"; }
    const char* GetReadOwner() const override { return "CAc3ContainerReader::ReadAudioSample"; }

private:
    // The sync frames of the unit at `bytes`, in order; at most `capacity`.
    static int SplitUnit(const uint8_t* bytes, int32_t available, Ac3SyncFrame* frames, size_t capacity,
                         size_t& count);
    int DescribeChannels(const Ac3SyncFrame* frames, size_t count);
    int SetDecoderConfiguration(const Ac3SyncFrame* frames, size_t count);

    Ac3FrameSyntax m_syntax;
};

} // namespace Quorvex::Vek
