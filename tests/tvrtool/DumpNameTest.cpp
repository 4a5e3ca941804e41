// What tvrtool reads from a file's name.
#include <gtest/gtest.h>

#include "DumpName.h"

namespace {

using tvrtool::FileName;
using tvrtool::NameKind;

struct NameCase {
  std::string path;
  NameKind kind;
  std::string extension;
  uint32_t first, second;
};
void PrintTo(const NameCase& c, std::ostream* os) { *os << c.path; }

class DumpNameTest : public ::testing::TestWithParam<NameCase> {};

TEST_P(DumpNameTest, Reads) {
  const NameCase& c = GetParam();
  const FileName name = tvrtool::parseFileName(c.path);
  EXPECT_EQ(name.kind, c.kind);
  EXPECT_EQ(name.extension, c.extension);
  EXPECT_EQ(name.first, c.first);
  EXPECT_EQ(name.second, c.second);
}

INSTANTIATE_TEST_SUITE_P(
    Names, DumpNameTest,
    ::testing::Values(NameCase{"5000000000_src_1920x1080.yuv", NameKind::Dump, "yuv", 1920, 1080},
                      NameCase{"/data/dumps.d/12_a_b_2x2_640x480.nv21", NameKind::Dump, "nv21", 640, 480},
                      NameCase{"12__8x4.y", NameKind::Dump, "y", 8, 4},  // empty name
                      NameCase{"rgb_640x480.raw", NameKind::Sized, "raw", 640, 480},
                      NameCase{"dir_1_2/x12_8x4.rgb", NameKind::Sized, "rgb", 8, 4},  // no time stamp
                      NameCase{"tensor.f32", NameKind::Plain, "f32", 0, 0},
                      NameCase{"12_src_1920x1080", NameKind::Dump, "", 1920, 1080},
                      NameCase{"12_src_1920X1080.nv12", NameKind::Plain, "nv12", 0, 0},
                      NameCase{"12_src_x1080.nv12", NameKind::Plain, "nv12", 0, 0},
                      NameCase{"12_src_-16x4.nv12", NameKind::Plain, "nv12", 0, 0},
                      NameCase{"12_src_2147483648x4.nv12", NameKind::Plain, "nv12", 0, 0},
                      NameCase{"12_src_16x4x2.nv12", NameKind::Plain, "nv12", 0, 0},
                      NameCase{"12_src_0x0.nv12", NameKind::Dump, "nv12", 0, 0},
                      NameCase{"", NameKind::Plain, "", 0, 0}));

}  // namespace
