#pragma once

// Every class of the media-description subsystem.
#include <vek/media/CTimeCode.h>
#include <vek/media/CTimeScale.h>
#include <vek/media/Rational.h>
