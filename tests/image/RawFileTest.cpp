// Whole-file reading, raw RGB output into the camera directory, and clip.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "LogCapture.h"
#include "TivoraLogger.h"
#include "TivoraUtil.h"

namespace {

using tivora::test::LogCapture;
using tivora::test::readFile;
using tivora::test::writeFile;

std::string error(const char* function, const std::string& message) {
  return std::string("[TVR ERROR] TivoraUtil.") + function + ": " + message;
}

class RawFileTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_ERROR);
  }
  const std::string dir = tivora::paths::kVendorCameraDir;
};

TEST_F(RawFileTest, ReadsTheWholeFileAndTerminatesIt) {
  for (const std::string& content : {std::string(), std::string("0123456789"), std::string("a\0b\r\n", 5),
                                     std::string(100000, 'x')}) {
    writeFile(dir + "/model.bin", content);
    unsigned char* data = nullptr;
    int size = -1;
    ASSERT_EQ(tivora::readFromFile((dir + "/model.bin").c_str(), &data, &size), 0);
    ASSERT_NE(data, nullptr);
    ASSERT_EQ(size, static_cast<int>(content.size()));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data), content.size()), content);
    EXPECT_EQ(data[content.size()], 0);
    std::free(data);
  }
}

TEST_F(RawFileTest, MissingFileIsReportedAndLeavesTheOutputsAlone) {
  unsigned char sentinel = 7;
  unsigned char* data = &sentinel;
  int size = 42;
  const std::string path = dir + "/absent.bin";
  LogCapture capture;
  EXPECT_EQ(tivora::readFromFile(path.c_str(), &data, &size), 18);
  EXPECT_EQ(data, &sentinel);
  EXPECT_EQ(size, 42);
  EXPECT_EQ(capture.texts(), std::vector<std::string>{error("readFromFile", "Cannot open file(" + path + ")")});
}

// A file that opens but cannot be measured: the kernel refuses seeking to the end of a pipe.
TEST_F(RawFileTest, UnseekableFileIsReportedAsAMissingBuffer) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  const std::string path = "/proc/self/fd/" + std::to_string(fds[0]);
  unsigned char* data = nullptr;
  int size = 42;
  LogCapture capture;
  EXPECT_EQ(tivora::readFromFile(path.c_str(), &data, &size), 18);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(size, 42);
  EXPECT_EQ(capture.texts(), std::vector<std::string>{error("readFromFile", "Buffer is null")});
  close(fds[0]);
  close(fds[1]);
}

TEST_F(RawFileTest, RawImageIsWrittenAsPackedRowsUnderTheCameraDirectory) {
  std::vector<unsigned char> rgb(640 * 480 * 3);
  for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = static_cast<unsigned char>(i % 251);
  writeFile(dir + "/.keep", "");
  tivora::outputRawImage(nullptr, rgb.data(), 640, 480);
  EXPECT_EQ(readFile(dir + "/rgb_640x480.raw"), std::string(rgb.begin(), rgb.end()));

  tivora::outputRawImage("seen.rgb", rgb.data(), 4, 2);  // the first 2 rows of 4 pixels, tightly packed
  EXPECT_EQ(readFile(dir + "/seen.rgb"), std::string(rgb.begin(), rgb.begin() + 24));
}

TEST_F(RawFileTest, EmptyImageStillCreatesTheFile) {
  writeFile(dir + "/seen.rgb", "old content");
  tivora::outputRawImage("seen.rgb", nullptr, 0, 480);
  EXPECT_TRUE(std::filesystem::exists(dir + "/seen.rgb"));
  EXPECT_EQ(readFile(dir + "/seen.rgb"), "");
}

TEST_F(RawFileTest, UnwritableDestinationIsReported) {
  const unsigned char rgb[3] = {1, 2, 3};
  LogCapture capture;
  tivora::outputRawImage("no/such/dir.raw", rgb, 1, 1);
  EXPECT_EQ(capture.texts(), std::vector<std::string>{error("outputRawImage", "Cannot open file.")});
}

TEST_F(RawFileTest, NullImageWithPixelsWritesNoFile) {
  writeFile(dir + "/.keep", "");
  LogCapture capture;
  tivora::outputRawImage("null.raw", nullptr, 2, 2);
  EXPECT_FALSE(std::filesystem::exists(dir + "/null.raw"));
  EXPECT_EQ(capture.texts().size(), 1u);
}

TEST(ClipTest, HighBoundIsTestedFirstAndNaNPassesThrough) {
  EXPECT_EQ(tivora::clip(5.f, 0.f, 1.f), 1.f);
  EXPECT_EQ(tivora::clip(-1.f, 0.f, 1.f), 0.f);
  EXPECT_EQ(tivora::clip(0.25f, 0.f, 1.f), 0.25f);
  EXPECT_EQ(tivora::clip(0.5f, 1.f, 0.f), 0.f);
  EXPECT_EQ(tivora::clip(-1.f, 1.f, 0.f), 1.f);
  EXPECT_TRUE(std::isnan(tivora::clip(std::numeric_limits<float>::quiet_NaN(), 0.f, 1.f)));
}

}  // namespace
