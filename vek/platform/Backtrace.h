#pragma once

// Call-stack capture and symbolication for the leak tracker.
#include <string>

namespace Quorvex::Vek::Platform {

// Fills frames with return addresses of the calling thread, skipping the
// innermost `skip` frames (this function itself is always skipped).
int CaptureBacktrace(void** frames, int capacity, int skip);

// One line per frame: "  #n module!function+0xoffset (address)", with C++
// names demangled where the platform can name them.
std::string SymbolicateBacktrace(void* const* frames, int count);

// Demangles a compiler symbol name; returns it unchanged when it is not one.
std::string Demangle(const char* symbol);

} // namespace Quorvex::Vek::Platform
