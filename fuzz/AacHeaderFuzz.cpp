// AAC configurations, ADTS headers and the MPEG audio info tag of a first
// frame: every parse stays inside the bytes, and what the configuration
// writer produces parses back to the same description.
#include <vek/elementary/AacHeaders.h>
#include <vek/elementary/MpegAudioInfoTag.h>

#include <cstdint>
#include <cstring>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

void ConfigRoundTrip(const uint8_t* data, size_t size)
{
    AacAudioSpecificConfig config;
    if (AacAudioSpecificConfig::Parse(data, size, config) < 0)
        return;
    Check(config.Channels() >= 0 && config.OutputSampleRate() > 0);
    uint8_t written[AacAudioSpecificConfig::MaxWrittenBytes];
    size_t count = 0;
    if (config.Write(written, sizeof written, count) < 0)
        return;
    AacAudioSpecificConfig again;
    Check(AacAudioSpecificConfig::Parse(written, count, again) == 0);
    Check(again.objectType == config.objectType && again.samplingFrequency == config.samplingFrequency &&
          again.channelConfiguration == config.channelConfiguration && again.sbrPresent == config.sbrPresent &&
          again.psPresent == config.psPresent && again.frameLength960 == config.frameLength960 &&
          again.extensionSamplingFrequency == config.extensionSamplingFrequency);
}

void Adts(const uint8_t* data, size_t size)
{
    AdtsHeader header;
    if (AdtsHeader::Parse(data, size, header) < 0)
        return;
    Check(header.frameLength >= header.HeaderSize() && header.samplingFrequency > 0);
    uint8_t written[AacAudioSpecificConfig::MaxWrittenBytes];
    size_t count = 0;
    if (header.ToAudioSpecificConfig().Write(written, sizeof written, count) == 0)
        Check(count >= 2 && count <= sizeof written);
}

void InfoTag(const uint8_t* data, size_t size)
{
    MpegAudioInfoTag tag;
    const int r = MpegAudioInfoTag::Parse(data, size, tag);
    if (r != 0)
        return;
    Check(tag.PlayableSamples() >= 0);
    if (tag.kind == MpegAudioInfoTag::Vbri)
        Check(size_t(tag.tocOffset) + size_t(tag.tocEntries) * tag.tocEntryBytes <= size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ConfigRoundTrip(data, size);
    Adts(data, size);
    InfoTag(data, size);
    return 0;
}
