// What the library's tests rely on: aligned memory from fcvMemAlloc, counted and freed. (The
// journal's arguments and the failure scripts are the image cases' own expectations.)
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "fastcv.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

TEST(MemAlloc, BlocksAreAlignedWholeAndCountedAndOnlyOursFreed) {
  const int before = fastcv_stub::liveAllocations();
  std::vector<void*> blocks;
  for (unsigned alignment = 1; alignment <= 128; alignment *= 2) {
    void* block = fcvMemAlloc(1000, alignment);
    ASSERT_NE(block, nullptr) << alignment;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0u) << alignment;
    std::memset(block, 0x5A, 1000);  // the sanitizers check that the whole size is ours
    blocks.push_back(block);
  }
  EXPECT_EQ(fastcv_stub::liveAllocations(), before + 8);
  for (void* block : blocks) fcvMemFree(block);
  std::vector<uint8_t> foreign(32, 7);
  fcvMemFree(foreign.data());  // not ours: left alone
  fcvMemFree(nullptr);
  EXPECT_EQ(fastcv_stub::liveAllocations(), before);
}

}  // namespace
