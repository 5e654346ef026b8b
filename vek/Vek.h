#pragma once

// Umbrella header: every public class of the library.
#include <vek/core/Core.h>
#include <vek/media/Media.h>
#include <vek/io/IO.h>
#include <vek/samples/Samples.h>
#include <vek/components/Components.h>
#include <vek/elementary/Elementary.h>
#include <vek/containers/Containers.h>
#include <vek/filters/Filters.h>
