#pragma once

// The PCM layout converter (filter type "afc "): every layout of the 'lpcm'
// family to every other (PcmLayout.h: integers of 8 to 32 bits in both byte
// orders, signed and unsigned, 32- and 64-bit floats, A-law and mu-law), at
// the same sample rate, with the rounding and clipping PcmSampleCodec.h
// states. Aliases ('s16l', 'f32l', the WAVE G.711 tags) are accepted as
// input and as output format; the output is described by the code that
// names the layout ('sowt' for 's16l').
//
// Use: SetInputProperties, SetOutputFormat (without one, Begin converts to
// 32-bit little-endian float, the first output format offered), Begin,
// then WriteSample/ReadSample; one output sample per input sample, with the
// same frame count, time, hint, trim and metadata. The converter holds
// nothing back, so a drain gives nothing more.
//
// Channels: the output has the input's channels unless the host changes
// the output description between SetOutputFormat and Begin
// (GetOutputProperties()->SetChannels, SetSpeakerPosition); the channels are
// then routed as AudioChannelMap.h describes (by speaker position when both
// sides give one for every channel, else by index; no mixing). Begin sets
// the output's geometry (bits, bytes per frame and packet, one frame per
// packet, bit rate) and its sample rate and time scale, which are the
// input's.
//
// Results, each with a log line naming the field and value:
// - Begin: -19017 for an input format that is no PCM layout or input bytes
//   per frame other than channels x sample bytes; -19003 for input or
//   output channels outside 1..CAudioProperties::MaxChannels or a sample
//   rate not above 0.
// - WriteSample: -19017 for input data shorter than its frames
//   (GetDuration() x bytes per frame; nothing past the data is read) or a
//   negative packet or frame count; -19003 for an output of more than
//   2^31 - 1 bytes; -19010 before Begin.
//
// Output buffers: the converter keeps a few data references and reuses one
// whose only holder is the converter again (every sample it went out in has
// been released), so a host that releases its output samples converts
// without allocating once the first few samples have been made.
#include <vek/filters/CAudioConverter.h>
#include <vek/filters/audio/PcmConversion.h>
#include <vek/samples/CLinearDataReference.h>

namespace Quorvex::Vek {

class VEK_API CAudioFormatConverter : public CAudioConverter {
public:
    enum : uint32_t { Type = Four("afc ") };

    CAudioFormatConverter();

    // Adds the converter's factory to the CAudioConverter inventory under
    // FilterType::AudioFormatConverter; a second call finds it there and
    // adds nothing. 0, or -19002.
    static int Register();

    // Every layout's naming code; the outputs start with 32-bit
    // little-endian float.
    FormatList* GetInputFormats() override;
    FormatList* GetOutputFormats() override;
    // AcceptScore for any code that names or aliases a layout, else 0.
    int Evaluate(const CAudioProperties* properties) override;

    using CAudioConverter::Convert;

protected:
    ~CAudioFormatConverter() override;

    bool ValidateOutputFormat(unsigned int format) override;
    int CreateOutputProperties(unsigned int format, CAudioProperties*& properties) override;
    int CoreBegin() override;
    int CoreEnd() override;
    int Convert(CAudioSample* input, CAudioSample*& output) override;

private:
    // Output data references kept for reuse.
    static constexpr int KeptBuffers = 4;

    static int CheckInput(const CAudioProperties* input, const PcmLayout& layout);
    static int DescribeOutput(const PcmLayout& layout, CAudioProperties* output);
    int ConvertData(CAudioSample* input, int64_t frames, CLinearDataReference* buffer);
    int GetOutputBuffer(int32_t length, RObject<CLinearDataReference>& buffer);

    bool m_running = false;
    PcmConversion m_conversion;
    RObject<CLinearDataReference> m_buffers[KeptBuffers];
};

} // namespace Quorvex::Vek
