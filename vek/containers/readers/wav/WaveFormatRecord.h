#pragma once

// The wave format record ("fmt " in WAV, the fmt chunk in Wave64): the
// WAVEFORMATEX fields, and for WAVE_FORMAT_EXTENSIBLE its valid bits,
// channel mask and sub-format. Both wave readers read it here and turn it
// into the track's description here, so the two cannot drift apart.
#include <vek/core/Guid.h>
#include <vek/io/CBinaryReader.h>
#include <vek/media/CAudioProperties.h>

namespace Quorvex::Vek {

struct VEK_API WaveFormatRecord {
    enum : uint16_t {
        TagUnknown = 0,
        TagPcm = 1,
        TagIeeeFloat = 3,
        TagMpeg = 0x50,
        TagMpegLayer3 = 0x55,
        TagExtensible = 0xFFFE,
    };
    enum : int32_t {
        // The WAVEFORMAT part every record has.
        BaseBytes = 16,
        // cbSize of an extensible record: valid bits, mask, sub-format.
        ExtensibleBytes = 22,
    };

    uint16_t formatTag = 0;
    uint16_t channels = 0;
    uint32_t samplesPerSec = 0;
    uint32_t avgBytesPerSec = 0;
    uint16_t blockAlign = 0;
    uint16_t bitsPerSample = 0;
    uint16_t cbSize = 0;
    bool extensible = false; // the three fields below are read
    uint16_t validBitsPerSample = 0;
    uint32_t channelMask = 0;
    _Guid subFormat;

    // Reads a record whose chunk payload holds `size` bytes; the reader
    // stands at the payload. `owner` ("CWavContainerReader::BeginIndex")
    // begins the log lines. 0, -19000 for a record that cannot be one, or
    // the stream's code.
    static int Read(CBinaryReader& reader, int64_t size, const char* owner, WaveFormatRecord& out);

    // The format tag that describes the data: the sub-format's tag for an
    // extensible record with a standard sub-format, else formatTag
    // (TagExtensible for an unknown sub-format).
    uint16_t GetEffectiveTag() const;

    // Fills `audio` with the track's format, geometry, bit rate, time scale
    // (the sample rate) and channel layout. MPEG audio tags are accepted
    // only with `acceptMpeg`. Every refusal is logged under `owner` and
    // returns -19000; a failing store returns its own code.
    int Describe(const char* owner, bool acceptMpeg, CAudioProperties* audio) const;

private:
    int ChooseFormat(const char* owner, bool acceptMpeg, uint32_t& format) const;
    int CheckGeometry(const char* owner) const;
    int SetChannelLayout(CAudioProperties* audio) const;
};

} // namespace Quorvex::Vek
