#pragma once

// The reader of raw AAC in ADTS framing (.aac): one audio track whose
// samples are the ADTS frames, header included (as demultiplexers hand them
// to ADTS decoders), one frame per sample of 1024 output frames per raw
// data block.
//
// The track's format is AudioFormat::ADTS (AAC in its own framing: its
// categorical format is AAC), its description the first frame's: sample
// rate, channels and their positions, the object type
// (AudioProperty::Mpeg4ObjectType) and the AudioSpecificConfig an MP4 or
// Matroska track of the same frames carries
// (AudioProperty::DecoderConfiguration), so a writer can drop the ADTS
// headers. The bit rate is the stream's average.
//
// Probing, tags, resynchronisation and damage: see CAudioFrameFileReader.
// A frame whose header has the ADTS sync word but frame_length 0 (or any
// length shorter than its header) is a format error at that offset.
#include <vek/containers/readers/CAudioFrameFileReader.h>
#include <vek/containers/readers/aac/AdtsFrameSyntax.h>

namespace Quorvex::Vek {

class VEK_API CAacContainerReader : public CAudioFrameFileReader {
public:
    enum : uint32_t { Type = Four("aac ") };

    CAacContainerReader();
    explicit CAacContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "AAC"; }

protected:
    ~CAacContainerReader() override;

    const AudioFrameSyntax& GetSyntax() const override { return m_syntax; }
    int DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                       bool& holdsNoAudio) override;
    const char* GetIndexOwner() const override { return "CAacContainerReader::BeginIndex"; }
    const char* GetReadOwner() const override { return "CAacContainerReader::ReadAudioSample"; }

private:
    int SetDecoderConfiguration(const AacAudioSpecificConfig& config);

    AdtsFrameSyntax m_syntax;
};

} // namespace Quorvex::Vek
