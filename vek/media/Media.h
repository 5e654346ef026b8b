#pragma once

// Every class of the media-description subsystem.
#include <vek/media/PropertyKeyList.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/IndexerProperty.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/VideoProperty.h>
#include <vek/media/ContainerReaderProperty.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/ContainerWriterProperty.h>
#include <vek/media/CodeBookProperty.h>
