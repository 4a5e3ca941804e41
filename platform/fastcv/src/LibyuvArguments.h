// What the operations share on their way into libyuv: its int parameters, and scratch planes for
// the interleaved operations it does in two passes.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

namespace fastcv_stub::detail {

// Whether every size and stride is one of libyuv's ints. A larger one would turn negative, which
// libyuv reads as "flip the image", not as a fault.
template <typename... Values>
bool fitLibyuv(Values... values) {
  return ((static_cast<uint64_t>(values) <= static_cast<uint64_t>(INT_MAX)) && ...);
}

inline int toInt(uint32_t value) { return static_cast<int>(value); }

// At least `bytes` bytes of this thread's scratch, kept for the next call: a stream of frames of
// one size allocates it once. Valid until the thread's next call.
uint8_t* scratch(std::size_t bytes);

}  // namespace fastcv_stub::detail
