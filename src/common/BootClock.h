// Time stamps for timing logs and dump names: the boot-time clock, which keeps counting through
// suspend, in nanoseconds.
#pragma once

#include <time.h>

#include <cstdint>

namespace tivora {

inline int64_t bootTimeNs() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

}  // namespace tivora
