#include <vector>

#include "LibyuvArguments.h"

uint8_t* fastcv_stub::detail::scratch(std::size_t bytes) {
  thread_local std::vector<uint8_t> memory;
  if (memory.size() < bytes) memory.resize(bytes);
  return memory.data();
}
