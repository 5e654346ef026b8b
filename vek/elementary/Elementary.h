#pragma once

// Every class of elementary-stream parsing.
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/AvcPictureOrderCounter.h>
#include <vek/elementary/AvcPictureParameterSet.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/AvcSliceHeader.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/HevcPictureOrderCounter.h>
#include <vek/elementary/HevcPictureParameterSet.h>
#include <vek/elementary/HevcProfileTierLevel.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/HevcShortTermRefPicSet.h>
#include <vek/elementary/HevcSliceHeader.h>
#include <vek/elementary/HevcVideoParameterSet.h>
#include <vek/elementary/MpegAudioFrameHeader.h>
#include <vek/elementary/NalUnitIterator.h>
#include <vek/elementary/SampleAspectRatio.h>
#include <vek/elementary/StartCodeScanner.h>
