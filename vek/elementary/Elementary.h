#pragma once

// Every class of elementary-stream parsing.
#include <vek/elementary/AacHeaders.h>
#include <vek/elementary/Ac3Headers.h>
#include <vek/elementary/AudioChannelMask.h>
#include <vek/elementary/Mpeg4VideoHeaders.h>
#include <vek/elementary/MpegAudioFrameHeader.h>
#include <vek/elementary/MpegAudioInfoTag.h>
#include <vek/elementary/MpegVideoHeaders.h>
#include <vek/elementary/PlainBitReader.h>
#include <vek/elementary/PlainBitWriter.h>
