// Buffer dumps: which requests write a file, its name, and that it holds the allocation as it lies.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "DebugAccess.h"
#include "DeviceFiles.h"
#include "common/BootClock.h"

namespace {

namespace fs = std::filesystem;
using tivora::test::ArmedDebug;
using tivora::test::DebugConfig;

const std::string kDumpDir = std::string(tivora::paths::kVendorCameraDir) + "/dumps";

std::vector<std::string> filesIn(const std::string& dir) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(dir)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

// An NV12 frame whose width and scanline differ from its stride and height, as a host's may.
struct Frame {
  std::vector<uint8_t> memory;
  tvr_image_buf_t record{};

  Frame() : memory(16 * 6 * 3 / 2) {
    for (size_t i = 0; i < memory.size(); ++i) memory[i] = static_cast<uint8_t>(i * 31 + 7);
    record.buf.p_base = memory.data();
    record.buf.buf_size = static_cast<uint32_t>(memory.size());
    record.format = TVR_FORMAT_NV12;
    record.size = {12, 6};
    record.stride = 16;
    record.scanline = 8;
    record.offset[1] = 16 * 6;
  }
  std::string bytes() const { return std::string(memory.begin(), memory.end()); }
};

class BufferDumpTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    fs::create_directories(kDumpDir);
  }
  ArmedDebug debug{kDumpDir, DebugConfig{{"DumpSource", "true"}, {"Other", "false"}}};
  Frame frame;
};

TEST_F(BufferDumpTest, KeyedDumpWritesTheWholeAllocationUnderAStampedName) {
  const int64_t before = tivora::bootTimeNs();
  debug.dumpBufferByKey("src", &frame.record, "DumpSource", "nv12");
  const int64_t after = tivora::bootTimeNs();

  const auto files = filesIn(kDumpDir);
  ASSERT_EQ(files.size(), 1u);
  std::smatch match;
  ASSERT_TRUE(std::regex_match(files[0], match, std::regex(R"((\d+)_src_16x6\.nv12)"))) << files[0];
  const long long stamp = std::stoll(match[1]);
  EXPECT_GE(stamp, before);
  EXPECT_LE(stamp, after);
  EXPECT_EQ(tivora::test::readFile(kDumpDir + "/" + files[0]), frame.bytes());
}

TEST_F(BufferDumpTest, TwoDumpsOfOneNameKeepBothFiles) {
  debug.dumpBufferByKey("src", &frame.record, "DumpSource", "yuv");
  frame.memory[0] ^= 0xff;
  debug.dumpBufferByKey("src", &frame.record, "DumpSource", "yuv");
  const auto files = filesIn(kDumpDir);
  ASSERT_EQ(files.size(), 2u);
  EXPECT_NE(tivora::test::readFile(kDumpDir + "/" + files[0]), tivora::test::readFile(kDumpDir + "/" + files[1]));
}

TEST_F(BufferDumpTest, RefusedRequestsWriteNothing) {
  Frame empty;
  empty.record.buf.buf_size = 0;
  Frame wrapping;  // 2 GiB and more do not fit the signed count: nothing is read or written
  wrapping.record.buf.buf_size = 0x80000000u;

  debug.dumpBufferByKey("src", nullptr, "DumpSource", "nv12");
  debug.dumpBufferByKey("src", &empty.record, "DumpSource", "nv12");
  debug.dumpBufferByKey("src", &wrapping.record, "DumpSource", "nv12");
  debug.dumpBufferByKey("src", &frame.record, "Missing", "nv12");
  debug.dumpBufferByKey("src", &frame.record, "Other", "nv12");
  ArmedDebug off(kDumpDir, DebugConfig{{"DumpSource", "true"}});
  off.disable();
  off.dumpBufferByKey("src", &frame.record, "DumpSource", "nv12");
  EXPECT_TRUE(filesIn(kDumpDir).empty());
}

// Only the exact value "true" switches a key on.
class BufferDumpKeyValueTest : public BufferDumpTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(BufferDumpKeyValueTest, DoesNotSwitchTheDumpOn) {
  ArmedDebug configured(kDumpDir, DebugConfig{{"Key", GetParam()}});
  configured.dumpBufferByKey("src", &frame.record, "Key", "nv12");
  EXPECT_TRUE(filesIn(kDumpDir).empty());
}

INSTANTIATE_TEST_SUITE_P(Values, BufferDumpKeyValueTest,
                         ::testing::Values("", "True", "TRUE", "true ", " true", "true\r", "1", "yes", "enable",
                                           std::string("true\0", 5)));

TEST_F(BufferDumpTest, DumpBufferWritesExactlyTheBytesAndTruncates) {
  const std::string path = kDumpDir + "/bytes.bin";
  tivora::test::writeFile(path, std::string(100, 'x'));
  const unsigned char data[] = {0, 1, 2, 0xff, 0};
  debug.dumpBuffer(path, data, 5);
  EXPECT_EQ(tivora::test::readFile(path), std::string("\0\1\2\xff\0", 5));
}

TEST_F(BufferDumpTest, DumpBufferRefusalsCreateNoFile) {
  const unsigned char data[] = {1, 2, 3};
  debug.dumpBuffer(kDumpDir + "/zero", data, 0);
  debug.dumpBuffer(kDumpDir + "/negative", data, -1);
  debug.dumpBuffer(kDumpDir + "/null", nullptr, 3);
  debug.dumpBuffer(kDumpDir + "/missing/dir", data, 3);
  ArmedDebug off(kDumpDir);
  off.disable();
  off.dumpBuffer(kDumpDir + "/off", data, 3);
  EXPECT_TRUE(filesIn(kDumpDir).empty());
}

}  // namespace

// Dump folders that cannot take a file, as the tests' root user meets them (root ignores
// permission bits, so "read-only" is a folder that is not there, lies under a regular file, or was
// replaced by one): each dump writes nothing and the caller goes on.
TEST_F(BufferDumpTest, FoldersThatCannotTakeAFileGetNoDumpAndNoComplaint) {
  const std::string file = kDumpDir + "/plain_file";
  tivora::test::writeFile(file, "x");
  const std::string replaced = std::string(TIVORA_PATH_PREFIX) + "/replaced";
  tivora::test::writeFile(replaced, "was a folder");
  for (const std::string& dir : {kDumpDir + "/missing", file + "/below", replaced}) {
    ArmedDebug unwritable(dir, DebugConfig{{"DumpSource", "true"}});
    unwritable.dumpBufferByKey("src", &frame.record, "DumpSource", "nv12");
    unwritable.dumpBuffer(dir + "/bytes.bin", frame.memory.data(), 4);
    EXPECT_FALSE(fs::is_directory(dir)) << dir;
  }
  EXPECT_EQ(filesIn(kDumpDir), std::vector<std::string>{"plain_file"});
  EXPECT_EQ(tivora::test::readFile(replaced), "was a folder");
}
