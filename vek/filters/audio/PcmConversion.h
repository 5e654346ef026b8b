#pragma once

// Conversion of interleaved PCM frames from one layout (PcmLayout.h) to
// another through a channel map (AudioChannelMap.h). Prepared once, then
// run on any number of buffers; running allocates nothing and keeps no
// state between calls, so one prepared conversion may serve several
// threads.
//
// A conversion to the same layout copies every sample as it is (the low
// bits of a 20-bit sample and mu-law's negative zero stay); silent channels
// get the layout's zero. Common pairs with every channel in place have
// direct kernels (PcmDirectKernels.h); everything else is decoded to doubles
// and encoded again in blocks on the stack (PcmSampleCodec.h). Both give the
// same bytes. On x86 processors with AVX2 the busiest pairs run vector
// kernels (PcmVectorKernels.h) over most of the data.
#include <cstdint>

#include <vek/filters/audio/AudioChannelMap.h>
#include <vek/filters/audio/PcmLayout.h>

namespace Quorvex::Vek {

class VEK_API PcmConversion {
public:
    // -19017 for a layout FromFormat did not make, -19003 for a map that
    // was never built; the conversion is unchanged on failure. Without
    // `vectorKernels` the conversion keeps to the portable kernels, whatever
    // the processor offers (for tests and comparisons: the bytes are the
    // same).
    int Prepare(const PcmLayout& input, const PcmLayout& output, const AudioChannelMap& map, bool vectorKernels = true);

    // Converts `frames` frames from `input` to `output`. -19010 before a
    // successful Prepare; -19003 for a negative frame count or an output
    // smaller than the frames need; -19017 for input data shorter than the
    // frames need (nothing past it is read); -19004 for a null buffer when
    // there are frames to convert. Each failure has a log line naming the
    // numbers; nothing is written on failure.
    int Convert(const uint8_t* input, int64_t inputBytes, uint8_t* output, int64_t outputBytes, int64_t frames) const;

    int32_t GetInputFrameBytes() const { return m_inputFrameBytes; }
    int32_t GetOutputFrameBytes() const { return m_outputFrameBytes; }
    const PcmLayout& GetInputLayout() const { return m_input; }
    const PcmLayout& GetOutputLayout() const { return m_output; }
    // True when a direct kernel does the work, and when a vector kernel
    // does most of it.
    bool IsDirect() const { return m_direct != nullptr; }
    bool IsVector() const { return m_bulk != nullptr; }

private:
    using DirectKernel = void (*)(const uint8_t* in, uint8_t* out, size_t samples);
    using BulkKernel = size_t (*)(const uint8_t* in, uint8_t* out, size_t samples);
    using DecodeFunction = void (*)(const uint8_t* in, double* out, size_t count);
    using EncodeFunction = void (*)(const double* in, uint8_t* out, size_t count);

    int CheckBuffers(const uint8_t* input, int64_t inputBytes, const uint8_t* output, int64_t outputBytes,
                     int64_t frames) const;
    void ConvertFlat(const uint8_t* input, uint8_t* output, size_t samples) const;
    void ConvertMapped(const uint8_t* input, uint8_t* output, size_t frames) const;
    void CopyMapped(const uint8_t* input, uint8_t* output, size_t frames) const;

    PcmLayout m_input;
    PcmLayout m_output;
    AudioChannelMap m_map;
    bool m_identity = false;
    DirectKernel m_direct = nullptr;
    BulkKernel m_bulk = nullptr; // the leading whole blocks, before m_direct does the rest
    DecodeFunction m_decode = nullptr;
    EncodeFunction m_encode = nullptr;
    int32_t m_inputFrameBytes = 0;
    int32_t m_outputFrameBytes = 0;
    uint8_t m_silence[8] = {}; // one output sample of value 0
};

} // namespace Quorvex::Vek
