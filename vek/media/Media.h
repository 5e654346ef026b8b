#pragma once

// Every class of the media-description subsystem.
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperties.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/CAudioProperties.h>
#include <vek/media/CMediaProperties.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/media/CVideoProperties.h>
#include <vek/media/CodeBookProperty.h>
#include <vek/media/ContainerFormat.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/ContainerReaderProperty.h>
#include <vek/media/ContainerWriterProperty.h>
#include <vek/media/FormatDescription.h>
#include <vek/media/IProperties.h>
#include <vek/media/IndexerProperty.h>
#include <vek/media/MediaProperties.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/MetadataFormat.h>
#include <vek/media/Properties.h>
#include <vek/media/PropertyKeyList.h>
#include <vek/media/SubtitleFormat.h>
#include <vek/media/SubtitleProperties.h>
#include <vek/media/VideoFormat.h>
#include <vek/media/VideoProperties.h>
#include <vek/media/VideoProperty.h>
