#pragma once

// Every class of the media-description subsystem.
#include <vek/media/AudioFormat.h>
#include <vek/media/ContainerFormat.h>
#include <vek/media/FormatDescription.h>
#include <vek/media/MetadataFormat.h>
#include <vek/media/SubtitleFormat.h>
#include <vek/media/VideoFormat.h>
