#pragma once

// The reader of raw MPEG audio streams (.mp3, .mp2, .mp1: layers I-III of
// MPEG-1, MPEG-2 and MPEG-2.5): one audio track, one frame per sample of
// 384 (layer I), 1152 (layer II, and layer III of MPEG-1) or 576 (layer III
// of MPEG-2 and 2.5) output frames. ID3v2 tags at the start and ID3v1 and
// APEv2 tags at the end are skipped.
//
// The track's format is AudioFormat::MP3 for layer III and AudioFormat::MPEG
// for layers I and II, with the layer in AudioProperty::MpegLayer. The bit
// rate is the stream's average, or, for a variable-rate stream whose Xing
// or VBRI tag counts its frames and bytes, the tag's.
//
// An encoder's tag frame (Xing, Info or VBRI) at the start holds no audio
// and is not a sample. When it carries LAME's extension, the decoded
// stream is trimmed to its gapless length, as LAME's decoders do:
//
//   start = encoder delay + 529 (the decoder's own delay)
//   end   = min(T, T - encoder padding + 529), T = the frames' output frames
//
// and only output frames in [start, end) are presented: a sample wholly
// before start or from end on gets the CMediaSample::Exclude hint, the one
// that holds start a leading composition trim of the frames before it, the
// one that holds end a trailing trim of the frames from it (a sample that
// would need both keeps only the leading one). T counts the frames the file
// holds, so a truncated file keeps the delay trim but loses only what is
// gone. Without LAME's extension nothing is trimmed.
//
// Probing, resynchronisation and damage: see CAudioFrameFileReader. The
// MPEG sync word is short, so garbage is always searched past, never an
// error.
#include <vek/containers/readers/CAudioFrameFileReader.h>
#include <vek/containers/readers/mpegaudio/MpegAudioFrameSyntax.h>
#include <vek/elementary/MpegAudioInfoTag.h>

namespace Quorvex::Vek {

class VEK_API CMpegAudioContainerReader : public CAudioFrameFileReader {
public:
    enum : uint32_t { Type = Four("mpga") };
    enum : int32_t {
        // What a decoder delays its output by, beyond the encoder's delay.
        DecoderDelay = 529,
    };

    CMpegAudioContainerReader();
    explicit CMpegAudioContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "MPEG audio"; }

protected:
    ~CMpegAudioContainerReader() override;

    const AudioFrameSyntax& GetSyntax() const override { return m_syntax; }
    int DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                       bool& holdsNoAudio) override;
    int DescribeTotals(const Totals& totals) override;
    int MarkSample(CAudioSample* sample, int64_t index) override;
    const char* GetIndexOwner() const override { return "CMpegAudioContainerReader::BeginIndex"; }
    const char* GetReadOwner() const override { return "CMpegAudioContainerReader::ReadAudioSample"; }

private:
    // Reads the encoder's tag of the first frame; false when it has none.
    bool ReadInfoTag(const uint8_t* bytes, int32_t available);

    MpegAudioFrameSyntax m_syntax;
    bool m_hasTag = false;
    MpegAudioInfoTag m_tag;
    // The presented output frames: [m_keepFrom, m_keepTo); set with LAME's extension.
    bool m_gapless = false;
    int64_t m_keepFrom = 0;
    int64_t m_keepTo = 0;
};

} // namespace Quorvex::Vek
