// The clock of the library's stage times and of the trace markers' arrival.
#pragma once

#include <time.h>

#include <cstdint>

namespace tvrtool {

inline int64_t monotonicNanoseconds() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

}  // namespace tvrtool
