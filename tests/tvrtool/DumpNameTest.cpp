// What tvrtool reads from a file's name.
#include <gtest/gtest.h>

#include <tuple>

#include "DumpName.h"

namespace {

using tvrtool::NameKind;

TEST(DumpNameTest, ReadsTheKindTheExtensionAndTheSizes) {
  const std::tuple<std::string, NameKind, std::string, uint32_t, uint32_t> cases[] = {
      {"/data/dumps.d/12_a_b_2x2_640x480.nv21", NameKind::Dump, "nv21", 640, 480},
      {"12__8x4.y", NameKind::Dump, "y", 8, 4},              // empty name
      {"dir_1_2/x12_8x4.rgb", NameKind::Sized, "rgb", 8, 4},  // no time stamp
      {"tensor.f32", NameKind::Plain, "f32", 0, 0},
      {"12_src_1920x1080", NameKind::Dump, "", 1920, 1080},
      {"12_src_1920X1080.nv12", NameKind::Plain, "nv12", 0, 0},
      {"12_src_-16x4.nv12", NameKind::Plain, "nv12", 0, 0},
      {"12_src_2147483648x4.nv12", NameKind::Plain, "nv12", 0, 0},
      {"12_src_16x4x2.nv12", NameKind::Plain, "nv12", 0, 0},
  };
  for (const auto& [path, kind, extension, first, second] : cases) {
    const tvrtool::FileName name = tvrtool::parseFileName(path);
    EXPECT_EQ(std::tie(name.kind, name.extension, name.first, name.second), std::tie(kind, extension, first, second))
        << path;
  }
  // A dump's own name, and its stamp, which orders a run's dumps.
  const tvrtool::FileName dump = tvrtool::parseFileName("/d/5000000000_a_b_2x2_640x480.nv21");
  EXPECT_EQ(std::tie(dump.name, dump.stamp), std::make_tuple(std::string("a_b_2x2"), uint64_t{5000000000}));
  EXPECT_EQ(tvrtool::parseFileName("99999999999999999999_s_8x4.y").stamp, 0u);
}

}  // namespace
