#pragma once

// Every class of the filter framework.
#include <vek/filters/AudioMetadataQueue.h>
#include <vek/filters/CAudioConverter.h>
#include <vek/filters/CAudioFilter.h>
#include <vek/filters/CFilter.h>
#include <vek/filters/CFilterBase.h>
#include <vek/filters/CFilterContext.h>
#include <vek/filters/CVideoConverter.h>
#include <vek/filters/CVideoFilter.h>
#include <vek/filters/FilterType.h>
#include <vek/filters/VideoConfiguration.h>
#include <vek/filters/VideoFrameLayout.h>
#include <vek/filters/VideoMetadataQueue.h>
#include <vek/filters/graphics/CGraphicsContext.h>
