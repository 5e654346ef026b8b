#pragma once

// The description facts every reader of coded audio frames sets the same
// way: a compressed track has no bits per sample and no fixed packet size;
// its time scale is its sample rate; its speakers come from a WAVE mask
// when the mask accounts for every channel.
#include <vek/media/CAudioProperties.h>

namespace Quorvex::Vek::AudioTrackFacts {

// Sample rate, time scale (the rate) and output frames per packet. -19003
// for a rate or frame count that is not positive.
VEK_API int SetCodedGeometry(CAudioProperties* audio, int32_t sampleRate, int32_t framesPerPacket);

// `channels` with the positions of `mask` when its bits number exactly
// `channels`, else with unknown positions.
VEK_API int SetChannels(CAudioProperties* audio, int32_t channels, uint32_t mask);

} // namespace Quorvex::Vek::AudioTrackFacts
