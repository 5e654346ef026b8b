#pragma once

// Every class of the container framework.
#include <vek/containers/CContainer.h>
#include <vek/containers/CContainerReader.h>
#include <vek/containers/CContainerReaderInventory.h>
#include <vek/containers/CContainerWriter.h>
#include <vek/containers/CContainerWriterInventory.h>
#include <vek/containers/CMediaIndexer.h>
#include <vek/containers/CVideoIndexer.h>
#include <vek/containers/CAudioIndexer.h>
#include <vek/containers/CSubtitleIndexer.h>
#include <vek/containers/CIndexer.h>
#include <vek/containers/CIndexerTraverser.h>
#include <vek/containers/Indexer.h>
#include <vek/containers/IndexerTraverser.h>
