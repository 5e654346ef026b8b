#pragma once

// Every class of the container framework and of its readers.
#include <vek/containers/CAudioIndexer.h>
#include <vek/containers/CContainer.h>
#include <vek/containers/CContainerReader.h>
#include <vek/containers/CContainerReaderInventory.h>
#include <vek/containers/CContainerWriter.h>
#include <vek/containers/CContainerWriterInventory.h>
#include <vek/containers/CIndexer.h>
#include <vek/containers/CIndexerTraverser.h>
#include <vek/containers/CMediaIndexer.h>
#include <vek/containers/CSubtitleIndexer.h>
#include <vek/containers/CVideoIndexer.h>
#include <vek/containers/Container.h>
#include <vek/containers/ContainerReader.h>
#include <vek/containers/ContainerReaderInventory.h>
#include <vek/containers/Indexer.h>
#include <vek/containers/IndexerTraverser.h>
#include <vek/containers/readers/CAudioFileReader.h>
#include <vek/containers/readers/aiff/CAiffContainerReader.h>
#include <vek/containers/readers/hevc/CMpegHevcContainerReader.h>
#include <vek/containers/readers/wav/BroadcastAudioExtension.h>
#include <vek/containers/readers/wav/CWavContainerReader.h>
#include <vek/containers/readers/wav/WaveFormatRecord.h>
#include <vek/containers/readers/wav64/CWav64ContainerReader.h>
#include <vek/containers/ContainerAnalyzer.h>
