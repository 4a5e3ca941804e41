// What the library's tests rely on: the journal of calls, aligned memory from fcvMemAlloc, and its
// failure scripts.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "fastcv.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

std::string address(const void* p) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", p);
  return text;
}

TEST(Journal, RecordsEveryCallWithItsArgumentsInOrder) {
  fastcv_stub::reset();
  uint8_t src[64] = {}, dst[64] = {};
  const std::string s = address(src), d = address(dst);
  fcvScaleDownMNInterleaveu8(src, 2, 2, 8, dst, 1, 1, 4);
  fcvRotateImageInterleavedu8(src, 2, 2, 4, dst, 4, FASTCV_ROTATE_270);
  fcvColorYCbCr420PseudoPlanarToRGB888u8(src, src + 32, 2, 2, 2, 2, dst, 6);
  void* block = fcvMemAlloc(100, 16);
  fcvMemFree(block);
  const std::vector<std::pair<std::string, std::string>> expected{
      {"fcvScaleDownMNInterleaveu8", s + ", 2, 2, 8, " + d + ", 1, 1, 4"},
      {"fcvRotateImageInterleavedu8", s + ", 2, 2, 4, " + d + ", 4, 3"},
      {"fcvColorYCbCr420PseudoPlanarToRGB888u8", s + ", " + address(src + 32) + ", 2, 2, 2, 2, " + d + ", 6"},
      {"fcvMemAlloc", "100, 16"},
      {"fcvMemFree", address(block)}};
  std::vector<std::pair<std::string, std::string>> journal;
  for (const auto& call : fastcv_stub::journal()) journal.emplace_back(call.name, call.args);
  EXPECT_EQ(journal, expected);
  fastcv_stub::reset();
  EXPECT_TRUE(fastcv_stub::journal().empty());
}

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

TEST(MemAlloc, FailureScriptsCountThenStop) {
  const auto granted = [] {
    void* block = fcvMemAlloc(16, 16);
    fcvMemFree(block);
    return block != nullptr;
  };
  fastcv_stub::reset();
  fastcv_stub::failMemAlloc(2);
  std::vector<bool> results{granted(), granted(), granted()};
  fastcv_stub::failMemAlloc(-1);
  results.insert(results.end(), {granted(), granted()});
  fastcv_stub::reset();  // forgets the script
  results.push_back(granted());
  EXPECT_EQ(results, (std::vector<bool>{false, false, true, false, false, true}));
}

}  // namespace
