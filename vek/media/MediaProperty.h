#pragma once

// Keys that any media description may carry, whatever its medium.
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API MediaProperty {
public:
    MediaProperty() = delete;

    static const char* const Duration; // "duration"
    static const char* const Mpeg2FormatIdentifier; // "mpeg2.format_identifier"
    static const char* const Mpeg2TransportStreamPid; // "mpeg2.ts.pid"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek
