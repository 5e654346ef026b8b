#pragma once

// VEK_API marks what the library exports. Three states: building the DLL
// (dllexport), using it (dllimport), and everywhere else default visibility
// on top of a hidden-by-default build.
#if defined(_WIN32)
#  if defined(VEK_STATIC)
#    define VEK_API
#  elif defined(VEK_BUILDING)
#    define VEK_API __declspec(dllexport)
#  else
#    define VEK_API __declspec(dllimport)
#  endif
#  define VEK_PLATFORM_WINDOWS 1
#else
#  define VEK_API __attribute__((visibility("default")))
#  define VEK_PLATFORM_WINDOWS 0
#endif

// Printf-style argument checking for the log and string formatters.
#if defined(__GNUC__) && defined(_WIN32)
// mingw-w64's C++ runtime formats with its C99-conforming printf (%zu, %lld).
#  define VEK_PRINTF(fmtIndex, firstArg) __attribute__((format(gnu_printf, fmtIndex, firstArg)))
#elif defined(__GNUC__)
#  define VEK_PRINTF(fmtIndex, firstArg) __attribute__((format(printf, fmtIndex, firstArg)))
#else
#  define VEK_PRINTF(fmtIndex, firstArg)
#endif

namespace Quorvex::Vek::Platform {

// UTF-16 code unit of the public text API: wchar_t is 16 bits on Windows
// only, so every other platform uses char16_t to keep one width everywhere.
#if defined(_WIN32)
using WCharType = wchar_t;
#else
using WCharType = char16_t;
#endif

} // namespace Quorvex::Vek::Platform
