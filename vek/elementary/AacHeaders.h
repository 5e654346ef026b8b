#pragma once

// AAC stream descriptions: the AudioSpecificConfig that MP4, Matroska and
// transport-stream descriptors carry (read and written), and the ADTS
// header that starts every frame of a raw .aac stream.
//
// Results: 0, RESULT_FORMAT_ERROR (-19017) for bad syntax or values,
// RESULT_NOT_SUPPORTED (-19006) for object types whose configuration is not
// the general-audio one, RESULT_ARGUMENT_NULL (-19004); every refusal logs
// the field and value. Nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

// Audio object types the parsers name (any value up to 95 can be carried).
namespace AacObjectType {
enum : uint8_t {
    Main = 1,
    LowComplexity = 2,
    ScalableSampleRate = 3,
    LongTermPrediction = 4,
    SpectralBandReplication = 5,
    Scalable = 6,
    ErLowComplexity = 17,
    ErLowDelay = 23,
    ParametricStereo = 29,
    Escape = 31,
};
}

struct VEK_API AacProgramConfig {
    uint8_t frontChannels = 0, sideChannels = 0, backChannels = 0, lfeChannels = 0;
    int32_t Channels() const { return frontChannels + sideChannels + backChannels + lfeChannels; }
};

struct VEK_API AacAudioSpecificConfig {
    enum : int32_t {
        // The longest configuration Write produces.
        MaxWrittenBytes = 16,
    };
    // How SBR and PS are announced: not at all, by object type 5 or 29 in
    // front of the core type, or by the sync extension (0x2b7) after it,
    // which older decoders skip.
    enum Signalling : uint8_t { NoExtension, Hierarchical, BackwardCompatible };

    uint8_t objectType = 0; // the core coder's type, 2 for HE-AAC's LC core
    uint8_t samplingFrequencyIndex = 0; // 15: explicit rate
    int32_t samplingFrequency = 0;
    uint8_t channelConfiguration = 0; // 0: program config element
    Signalling signalling = NoExtension;
    bool sbrPresent = false;
    bool psPresent = false;
    uint8_t extensionSamplingFrequencyIndex = 0;
    int32_t extensionSamplingFrequency = 0; // the SBR output rate, 0 without SBR
    uint8_t extensionChannelConfiguration = 0; // ER BSAC cores behind SBR only
    // General-audio configuration.
    bool frameLength960 = false;
    bool dependsOnCoreCoder = false;
    uint16_t coreCoderDelay = 0;
    bool extensionFlag = false;
    uint8_t layerNumber = 0; // scalable types only
    bool hasProgramConfig = false;
    AacProgramConfig programConfig;

    static int Parse(const uint8_t* bytes, size_t size, AacAudioSpecificConfig& out);
    // Writes the configuration (a program config element cannot be written:
    // -19006); `written` gets the byte count.
    int Write(uint8_t* buffer, size_t capacity, size_t& written) const;

    // Output channels (0 when a configuration has none), their WAVE mask
    // (0 when the layout has no such mask), samples per frame and the
    // output rate (the SBR rate when SBR is present).
    int32_t Channels() const;
    uint32_t ChannelMask() const;
    int32_t SamplesPerFrame() const;
    int32_t OutputSampleRate() const;
};

struct VEK_API AdtsHeader {
    enum : int32_t { SizeWithoutCrc = 7, SizeWithCrc = 9 };

    bool mpeg2 = false; // the ID bit: MPEG-2 rather than MPEG-4 AAC
    bool protectionAbsent = true;
    uint8_t profile = 0; // object type - 1
    uint8_t samplingFrequencyIndex = 0;
    int32_t samplingFrequency = 0;
    uint8_t channelConfiguration = 0;
    int32_t frameLength = 0; // the whole frame, header included
    uint16_t bufferFullness = 0; // 0x7FF: variable rate
    uint8_t rawDataBlocks = 0; // blocks in the frame, 1..4

    int32_t HeaderSize() const { return protectionAbsent ? SizeWithoutCrc : SizeWithCrc; }
    // Parses the header at `bytes` (at least SizeWithoutCrc of them; the CRC
    // word too when the header announces one).
    static int Parse(const uint8_t* bytes, size_t size, AdtsHeader& out);
    // The configuration an MP4 or Matroska track of these frames carries.
    AacAudioSpecificConfig ToAudioSpecificConfig() const;
};

// The rate of a sampling frequency index; 0 for a reserved index.
VEK_API int32_t AacSamplingFrequency(uint32_t index);

} // namespace Quorvex::Vek
