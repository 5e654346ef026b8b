#pragma once

// Every class of the samples subsystem.
#include <vek/samples/CAccessUnitDataReference.h>
#include <vek/samples/AudioSample.h>
#include <vek/samples/CAncillaryMetadataElement.h>
#include <vek/samples/CAudioSample.h>
#include <vek/samples/CBufferDataReference.h>
#include <vek/samples/CContainerDataReference.h>
#include <vek/samples/CInterlaceMetadataElement.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CLockedDataReference.h>
#include <vek/samples/CMediaSample.h>
#include <vek/samples/CMediaSampleDataReference.h>
#include <vek/samples/CMediaSampleQueue.h>
#include <vek/samples/CMemoryDataReference.h>
#include <vek/samples/CMetadata.h>
#include <vek/samples/CMetadataElement.h>
#include <vek/samples/CPixelBufferDataReference.h>
#include <vek/samples/CPixelDataReference.h>
#include <vek/samples/CSubtitleSample.h>
#include <vek/samples/CTimecodeMetadataElement.h>
#include <vek/samples/CVideoSample.h>
#include <vek/samples/LockedDataReference.h>
#include <vek/samples/MediaSample.h>
#include <vek/samples/Metadata.h>
#include <vek/samples/SubtitleSample.h>
#include <vek/samples/VideoSample.h>
