// Copying one image row.
#pragma once

#include <cstddef>
#include <cstring>

#include "common/Sanitizers.h"

namespace tivora::image {

// On x86-64 a row goes through the processor's string copy (rep movsb): for rows of a few hundred
// bytes and up it writes whole cache lines without reading them first, as memcpy does only for
// much larger blocks, which makes a row-by-row copy of a frame nearly as fast as one memcpy of the
// same bytes. Sanitizer builds keep memcpy, which they can check.
inline void copyRow(void* dst, const void* src, std::size_t bytes) {
#if defined(__x86_64__) && !defined(TVR_ADDRESS_SANITIZER) && !defined(TVR_THREAD_SANITIZER)
  if (bytes >= 256) {
    asm volatile("rep movsb" : "+D"(dst), "+S"(src), "+c"(bytes) : : "memory");
    return;
  }
#endif
  std::memcpy(dst, src, bytes);
}

}  // namespace tivora::image
