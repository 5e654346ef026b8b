#pragma once

// Every class of elementary-stream parsing.
#include <vek/elementary/MpegAudioFrameHeader.h>
