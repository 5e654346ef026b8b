#pragma once

// Small process services: clock, thread identity, sleeping.
#include <cstdint>

namespace Quorvex::Vek::Platform {

// Seconds since the Unix epoch (64-bit on every platform).
int64_t CurrentTimeSeconds();
// A number that identifies the calling thread within the process.
uint64_t CurrentThreadId();
void SleepMilliseconds(int32_t milliseconds);

} // namespace Quorvex::Vek::Platform
