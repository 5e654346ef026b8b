#pragma once

// Live-object tracker. Between Mark and ShowLeaksSinceMark every CObject
// made (optionally only those of one type tag) is recorded; in Stack mode
// with its creation backtrace. ShowLeaksSinceMark logs what is still alive,
// grouped by identical creation backtrace, symbolicated and demangled.
//
// All public operations are static and act on the one process-wide
// instance; they do nothing while it does not exist. The instance is made
// at library start-up.
#include <atomic>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class CObject;
class CLeaksTable;

class VEK_API CLeaks {
public:
    static constexpr int32_t Off = 0;
    static constexpr int32_t Object = 1;
    static constexpr int32_t Stack = 2;

    // Forgets everything tracked so far and starts tracking in `mode`.
    // A non-zero `type` tracks only objects with that tag.
    static void Mark(int32_t mode, uint32_t type = 0);
    // Logs the leak report (or the "No leaks detected" line at level 5),
    // stops tracking, and returns the number of objects still alive.
    static int32_t ShowLeaksSinceMark(int32_t mode);
    // Supplies the label text of report entries (default "Leaked CObject").
    static void SetCallback(char* (*callback)(void));

    // The text of the last report written, for hosts that show it themselves.
    static const char* GetLastReport();

    static bool IsTracking() { return s_mode.load(std::memory_order_relaxed) != Off; }

    // Makes the instance; the library's start-up calls it. Later calls do nothing.
    static void CreateInstance();

private:
    friend class CObject;
    friend class CLeaksTable;
    static void CreateObject(const CObject* object);
    static void DestroyObject(const CObject* object);
    // Stack mode records where each reference of a tracked object was taken.
    static void AcquireObject(const CObject* object);
    static void ReleaseObject(const CObject* object);

    static std::atomic<int32_t> s_mode;
    static CLeaksTable* s_instance;
};

} // namespace Quorvex::Vek
