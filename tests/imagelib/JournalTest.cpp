#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "fastcv.h"
#include "fastcv_stub/FastcvControl.h"

namespace imagelib {
namespace {

std::string address(const void* p) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", p);
  return text;
}

TEST(Journal, RecordsEveryCallWithItsArgumentsInOrder) {
  fastcv_stub::reset();
  uint8_t src[64] = {};
  uint8_t dst[64] = {};
  uint8_t chroma[16] = {};
  const std::string s = address(src);
  const std::string d = address(dst);

  fcvScaleDownMNu8(src, 4, 2, 8, dst, 2, 1, 6);
  fcvScaleDownMNInterleaveu8(src, 2, 2, 8, dst, 1, 1, 4);
  fcvScaleUpPolyu8(src, 2, 1, 2, dst, 4, 2, 5);
  fcvScaleUpPolyInterleaveu8(src, 1, 1, 2, dst, 2, 2, 4);
  fcvRotateImageu8(src, 3, 2, 3, dst, 2, FASTCV_ROTATE_270);
  fcvRotateImageInterleavedu8(src, 2, 2, 4, dst, 4, FASTCV_ROTATE_180);
  fcvColorYCbCr420PseudoPlanarToRGB888u8(src, chroma, 2, 2, 2, 2, dst, 6);
  void* block = fcvMemAlloc(100, 16);
  fcvMemFree(block);
  fcvMemFree(nullptr);
  fcvSetOperationMode(FASTCV_OP_CPU_PERFORMANCE);

  const std::vector<fastcv_stub::Call> expected{
      {"fcvScaleDownMNu8", s + ", 4, 2, 8, " + d + ", 2, 1, 6"},
      {"fcvScaleDownMNInterleaveu8", s + ", 2, 2, 8, " + d + ", 1, 1, 4"},
      {"fcvScaleUpPolyu8", s + ", 2, 1, 2, " + d + ", 4, 2, 5"},
      {"fcvScaleUpPolyInterleaveu8", s + ", 1, 1, 2, " + d + ", 2, 2, 4"},
      {"fcvRotateImageu8", s + ", 3, 2, 3, " + d + ", 2, 3"},
      {"fcvRotateImageInterleavedu8", s + ", 2, 2, 4, " + d + ", 4, 2"},
      {"fcvColorYCbCr420PseudoPlanarToRGB888u8", s + ", " + address(chroma) + ", 2, 2, 2, 2, " + d + ", 6"},
      {"fcvMemAlloc", "100, 16"},
      {"fcvMemFree", address(block)},
      {"fcvMemFree", address(nullptr)},
      {"fcvSetOperationMode", "3"},
  };
  const auto journal = fastcv_stub::journal();
  ASSERT_EQ(journal.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(journal[i].name, expected[i].name) << i;
    EXPECT_EQ(journal[i].args, expected[i].args) << i;
  }

  fastcv_stub::reset();
  EXPECT_TRUE(fastcv_stub::journal().empty());
}

}  // namespace
}  // namespace imagelib
