#pragma once

// Every class of the input/output subsystem.
#include <vek/io/CDataUri.h>
#include <vek/io/CUri.h>
#include <vek/io/CUriBuilder.h>
#include <vek/io/CUriParameter.h>
#include <vek/io/CUriParameterCollection.h>
