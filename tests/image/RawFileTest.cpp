// Whole-file reading (what a readable file gives is the fuzz target's), raw RGB output into the camera
// directory, and clip.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "TivoraUtil.h"

namespace {

using tivora::test::readFile;
using tivora::test::writeFile;

const std::string kCamera = tivora::paths::kVendorCameraDir;

using RawFileTest = tivora::test::DeviceTest;

// A file that does not open, and one that opens but cannot be measured (a pipe refuses the seek).
TEST_F(RawFileTest, FilesThatCannotBeReadLeaveTheOutputsAlone) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  for (const std::string& path : {kCamera + "/absent.bin", "/proc/self/fd/" + std::to_string(fds[0])}) {
    unsigned char sentinel = 7;
    unsigned char* data = &sentinel;
    int size = 42;
    EXPECT_EQ(tivora::readFromFile(path.c_str(), &data, &size), 18) << path;
    EXPECT_EQ(data, &sentinel);
    EXPECT_EQ(size, 42);
  }
  close(fds[0]);
  close(fds[1]);
}

TEST_F(RawFileTest, RawImageIsWrittenAsPackedRowsUnderTheCameraDirectory) {
  std::vector<unsigned char> rgb(640 * 480 * 3);
  for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = static_cast<unsigned char>(i % 251);
  writeFile(kCamera + "/seen.rgb", "old content");
  tivora::outputRawImage(nullptr, rgb.data(), 640, 480);
  EXPECT_EQ(readFile(kCamera + "/rgb_640x480.raw"), std::string(rgb.begin(), rgb.end()));
  tivora::outputRawImage("seen.rgb", rgb.data(), 4, 2);  // the first 2 rows of 4 pixels, truncating
  EXPECT_EQ(readFile(kCamera + "/seen.rgb"), std::string(rgb.begin(), rgb.begin() + 24));
  tivora::outputRawImage("seen.rgb", nullptr, 0, 480);  // no pixels: an empty file
  EXPECT_TRUE(std::filesystem::exists(kCamera + "/seen.rgb"));
  EXPECT_EQ(readFile(kCamera + "/seen.rgb"), "");
  tivora::outputRawImage("null.raw", nullptr, 2, 2);  // pixels without an image: no file
  EXPECT_FALSE(std::filesystem::exists(kCamera + "/null.raw"));
}

TEST(ClipTest, HighBoundIsTestedFirstAndNaNPassesThrough) {
  for (const auto& [value, low, high, expected] : std::vector<std::array<float, 4>>{
           {5, 0, 1, 1}, {-1, 0, 1, 0}, {0.25f, 0, 1, 0.25f}, {0.5f, 1, 0, 0}, {-1, 1, 0, 1}}) {
    EXPECT_EQ(tivora::clip(value, low, high), expected) << value << " in " << low << ".." << high;
  }
  EXPECT_TRUE(std::isnan(tivora::clip(std::numeric_limits<float>::quiet_NaN(), 0.f, 1.f)));
}

}  // namespace
