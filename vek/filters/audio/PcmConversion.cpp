#include <vek/filters/audio/PcmConversion.h>

#include <algorithm>
#include <cstring>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/filters/audio/PcmDirectKernels.h>
#include <vek/filters/audio/PcmSampleCodec.h>
#include <vek/filters/audio/PcmVectorKernels.h>

namespace Quorvex::Vek {

namespace {

// Samples per block of the general path: at least one frame of the widest
// layout, and two blocks of doubles (16 KiB) fit a first-level cache.
constexpr size_t kBlockSamples = CAudioProperties::MaxChannels;

} // namespace

namespace {

bool IsKnownLayout(const PcmLayout& layout)
{
    const PcmLayout* known = PcmLayout::Find(layout.format);
    return known && known->format == layout.format && known->bytes == layout.bytes && known->bits == layout.bits &&
           known->coding == layout.coding && known->order == layout.order;
}

} // namespace

int PcmConversion::Prepare(const PcmLayout& input, const PcmLayout& output, const AudioChannelMap& map,
                           bool vectorKernels)
{
    // Only layouts as FromFormat makes them: every size below is taken from
    // them, so a hand-made layout that disagrees with its code is refused.
    if (!IsKnownLayout(input) || !IsKnownLayout(output)) {
        Log(LogLevel::Error, "PcmConversion::Prepare: layout of format 0x%08X is not the format's own\n",
            unsigned(IsKnownLayout(input) ? output.format : input.format));
        return RESULT_FORMAT_ERROR;
    }
    const PcmSampleCodec::DecodeFunction decode = PcmSampleCodec::FindDecoder(input);
    const PcmSampleCodec::EncodeFunction encode = PcmSampleCodec::FindEncoder(output);
    if (!decode || !encode) {
        Log(LogLevel::Error, "PcmConversion::Prepare: no PCM layout for format 0x%08X\n",
            unsigned(decode ? output.format : input.format));
        return RESULT_FORMAT_ERROR;
    }
    if (map.GetInputChannels() < 1 || map.GetOutputChannels() < 1) {
        Log(LogLevel::Error, "PcmConversion::Prepare: the channel map has %d input and %d output channels\n",
            int(map.GetInputChannels()), int(map.GetOutputChannels()));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    m_input = input;
    m_output = output;
    m_map = map;
    m_identity = map.IsIdentity();
    m_decode = decode;
    m_encode = encode;
    m_direct = m_identity ? PcmDirectKernels::Find(input, output) : nullptr;
    m_bulk = m_direct && vectorKernels ? PcmVectorKernels::Find(input, output) : nullptr;
    m_inputFrameBytes = input.bytes * map.GetInputChannels();
    m_outputFrameBytes = output.bytes * map.GetOutputChannels();
    const double zero = 0.0;
    encode(&zero, m_silence, 1);
    return RESULT_OK;
}

int PcmConversion::CheckBuffers(const uint8_t* input, int64_t inputBytes, const uint8_t* output, int64_t outputBytes,
                                int64_t frames) const
{
    if (!m_decode) {
        Log(LogLevel::Error, "PcmConversion::Convert: called before a successful Prepare\n");
        return RESULT_BAD_ORDER_ERROR;
    }
    int64_t inputNeeded = 0;
    int64_t outputNeeded = 0;
    if (frames < 0) {
        Log(LogLevel::Error, "PcmConversion::Convert: frame count %lld is negative\n", static_cast<long long>(frames));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (!Checked::Multiply(frames, int64_t(m_outputFrameBytes), &outputNeeded) || outputBytes < outputNeeded) {
        Log(LogLevel::Error, "PcmConversion::Convert: output of %lld bytes cannot hold %lld frames of %d bytes\n",
            static_cast<long long>(outputBytes), static_cast<long long>(frames), int(m_outputFrameBytes));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (!Checked::Multiply(frames, int64_t(m_inputFrameBytes), &inputNeeded) || inputBytes < inputNeeded) {
        Log(LogLevel::Error, "PcmConversion::Convert: input of %lld bytes is shorter than %lld frames of %d bytes\n",
            static_cast<long long>(inputBytes), static_cast<long long>(frames), int(m_inputFrameBytes));
        return RESULT_FORMAT_ERROR;
    }
    if (frames > 0 && (!input || !output)) {
        Log(LogLevel::Error, "PcmConversion::Convert: null %s buffer for %lld frames\n", input ? "output" : "input",
            static_cast<long long>(frames));
        return RESULT_ARGUMENT_NULL;
    }
    return RESULT_OK;
}

int PcmConversion::Convert(const uint8_t* input, int64_t inputBytes, uint8_t* output, int64_t outputBytes,
                           int64_t frames) const
{
    const int result = CheckBuffers(input, inputBytes, output, outputBytes, frames);
    if (result < 0 || frames == 0)
        return result;
    const size_t samples = size_t(frames) * size_t(m_map.GetInputChannels());
    if (m_direct) {
        const size_t done = m_bulk ? m_bulk(input, output, samples) : 0;
        m_direct(input + done * size_t(m_input.bytes), output + done * size_t(m_output.bytes), samples - done);
    } else if (m_identity)
        ConvertFlat(input, output, samples);
    else if (m_input.format == m_output.format)
        CopyMapped(input, output, size_t(frames));
    else
        ConvertMapped(input, output, size_t(frames));
    return RESULT_OK;
}

void PcmConversion::ConvertFlat(const uint8_t* input, uint8_t* output, size_t samples) const
{
    double block[kBlockSamples];
    const size_t inBytes = size_t(m_input.bytes);
    const size_t outBytes = size_t(m_output.bytes);
    for (size_t done = 0; done < samples;) {
        const size_t count = std::min(kBlockSamples, samples - done);
        m_decode(input + done * inBytes, block, count);
        m_encode(block, output + done * outBytes, count);
        done += count;
    }
}

void PcmConversion::ConvertMapped(const uint8_t* input, uint8_t* output, size_t frames) const
{
    double decoded[kBlockSamples];
    double routed[kBlockSamples];
    const size_t inChannels = size_t(m_map.GetInputChannels());
    const size_t outChannels = size_t(m_map.GetOutputChannels());
    const int16_t* sources = m_map.GetSources();
    const size_t blockFrames = kBlockSamples / std::max(inChannels, outChannels);
    for (size_t done = 0; done < frames;) {
        const size_t count = std::min(blockFrames, frames - done);
        m_decode(input + done * size_t(m_inputFrameBytes), decoded, count * inChannels);
        for (size_t frame = 0; frame < count; ++frame) {
            const double* from = decoded + frame * inChannels;
            double* to = routed + frame * outChannels;
            for (size_t channel = 0; channel < outChannels; ++channel)
                to[channel] = sources[channel] == AudioChannelMap::Silent ? 0.0 : from[sources[channel]];
        }
        m_encode(routed, output + done * size_t(m_outputFrameBytes), count * outChannels);
        done += count;
    }
}

void PcmConversion::CopyMapped(const uint8_t* input, uint8_t* output, size_t frames) const
{
    const size_t bytes = size_t(m_output.bytes);
    const size_t outChannels = size_t(m_map.GetOutputChannels());
    const int16_t* sources = m_map.GetSources();
    for (size_t frame = 0; frame < frames; ++frame) {
        const uint8_t* from = input + frame * size_t(m_inputFrameBytes);
        uint8_t* to = output + frame * size_t(m_outputFrameBytes);
        for (size_t channel = 0; channel < outChannels; ++channel) {
            const int16_t source = sources[channel];
            std::memcpy(to + channel * bytes, source == AudioChannelMap::Silent ? m_silence : from + source * bytes,
                        bytes);
        }
    }
}

} // namespace Quorvex::Vek
