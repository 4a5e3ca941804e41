#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "fastcv.h"
#include "fastcv_stub/FastcvControl.h"

namespace imagelib {
namespace {

class MemAllocTest : public ::testing::TestWithParam<unsigned> {
 protected:
  void SetUp() override { fastcv_stub::reset(); }
  void TearDown() override { fastcv_stub::reset(); }
};

TEST_P(MemAllocTest, BlocksAreAlignedAndWritable) {
  const unsigned alignment = GetParam();
  const int before = fastcv_stub::liveAllocations();
  std::vector<void*> blocks;
  for (unsigned size : {0u, 1u, 3u, 64u, 1000u}) {
    void* block = fcvMemAlloc(size, alignment);
    ASSERT_NE(block, nullptr) << size;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0u) << size;
    std::memset(block, 0x5A, size);  // the sanitizers check the whole size is ours
    blocks.push_back(block);
  }
  EXPECT_EQ(fastcv_stub::liveAllocations(), before + 5);
  for (void* block : blocks) fcvMemFree(block);
  EXPECT_EQ(fastcv_stub::liveAllocations(), before);
}

INSTANTIATE_TEST_SUITE_P(PowersOfTwo, MemAllocTest, ::testing::Values(1u, 2u, 4u, 8u, 16u, 32u, 64u, 128u));

class BadMemAllocTest : public ::testing::TestWithParam<std::pair<unsigned, unsigned>> {};

TEST_P(BadMemAllocTest, ReturnsNull) {
  const auto [size, alignment] = GetParam();
  EXPECT_EQ(fcvMemAlloc(size, alignment), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Refused, BadMemAllocTest,
                         ::testing::Values(std::pair{16u, 0u}, std::pair{16u, 3u}, std::pair{16u, 24u},
                                           std::pair{16u, 255u}, std::pair{16u, 256u}, std::pair{UINT_MAX, 16u},
                                           std::pair{static_cast<unsigned>(fastcv_stub::kMaxAllocation) + 1, 16u}));

TEST(MemFree, IgnoresNullAndForeignMemory) {
  const int before = fastcv_stub::liveAllocations();
  fcvMemFree(nullptr);
  std::vector<uint8_t> foreign(32, 7);
  fcvMemFree(foreign.data());  // would crash or corrupt the heap if it were released
  EXPECT_EQ(foreign[31], 7);
  EXPECT_EQ(fastcv_stub::liveAllocations(), before);
}

TEST(MemAllocFailure, ScriptedCountThenSucceeds) {
  fastcv_stub::reset();
  fastcv_stub::failMemAlloc(2);
  EXPECT_EQ(fcvMemAlloc(16, 16), nullptr);
  EXPECT_EQ(fcvMemAlloc(16, 16), nullptr);
  void* block = fcvMemAlloc(16, 16);
  EXPECT_NE(block, nullptr);
  fcvMemFree(block);

  fastcv_stub::failMemAlloc(-1);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(fcvMemAlloc(16, 16), nullptr);
  fastcv_stub::failMemAlloc(0);
  block = fcvMemAlloc(16, 16);
  EXPECT_NE(block, nullptr);
  fcvMemFree(block);
  fastcv_stub::reset();
}

TEST(MemAllocFailure, ScriptedFailuresAreSharedAcrossThreads) {
  fastcv_stub::reset();
  constexpr int kThreads = 4;
  constexpr int kCalls = 200;
  constexpr int kFailures = 150;
  fastcv_stub::failMemAlloc(kFailures);
  std::vector<int> nulls(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &nulls] {
      for (int i = 0; i < kCalls; ++i) {
        void* block = fcvMemAlloc(64, 32);
        if (block == nullptr) ++nulls[static_cast<std::size_t>(t)];
        fcvMemFree(block);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  int total = 0;
  for (int n : nulls) total += n;
  EXPECT_EQ(total, kFailures);
  EXPECT_EQ(fastcv_stub::journal().size(), std::size_t{2 * kThreads * kCalls});
  fastcv_stub::reset();
}

}  // namespace
}  // namespace imagelib
