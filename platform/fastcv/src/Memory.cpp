// fcvMemAlloc and fcvMemFree: aligned blocks, registered so that fcvMemFree releases only its own.
#include <cstdlib>
#include <mutex>
#include <unordered_set>

#include "StubState.h"
#include "fastcv.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

constexpr unsigned int kMaxAlignment = 128;  // the largest power of two below 255

struct Blocks {
  std::mutex lock;
  std::unordered_set<void*> live;
};

Blocks& blocks() {
  static auto* b = new Blocks;  // never destroyed: memory may be freed from static destructors
  return *b;
}

bool validAlignment(unsigned int alignment) {
  return alignment != 0 && alignment <= kMaxAlignment && (alignment & (alignment - 1)) == 0;
}

}  // namespace

int fastcv_stub::liveAllocations() {
  std::lock_guard<std::mutex> guard(blocks().lock);
  return static_cast<int>(blocks().live.size());
}

extern "C" void* fcvMemAlloc(unsigned int nBytes, unsigned int byteAlignment) {
  using namespace fastcv_stub;
  detail::journalCall("fcvMemAlloc", nBytes, byteAlignment);
  if (detail::memAllocMustFail() || !validAlignment(byteAlignment) || nBytes > kMaxAllocation) {
    return nullptr;
  }
  // posix_memalign wants a multiple of the pointer size; a stricter alignment satisfies the caller.
  const std::size_t alignment = byteAlignment < sizeof(void*) ? sizeof(void*) : byteAlignment;
  void* block = nullptr;
  if (posix_memalign(&block, alignment, nBytes == 0 ? 1 : nBytes) != 0) return nullptr;
  std::lock_guard<std::mutex> guard(blocks().lock);
  blocks().live.insert(block);
  return block;
}

extern "C" void fcvMemFree(void* ptr) {
  fastcv_stub::detail::journalCall("fcvMemFree", static_cast<const void*>(ptr));
  if (ptr == nullptr) return;
  {
    std::lock_guard<std::mutex> guard(blocks().lock);
    if (blocks().live.erase(ptr) == 0) return;  // not ours: leave it alone
  }
  std::free(ptr);
}
