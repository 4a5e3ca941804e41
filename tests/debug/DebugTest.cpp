// A processing's debug support: the configuration read from the logger's data directory (the camera
// directory: support/CameraLogger.cpp), buffer dumps, and the text form of the host records that
// tools read back. Its messages are in log/MessagesTest.cpp.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <string>
#include <unordered_map>

#include "DeviceFiles.h"
#include "Images.h"
#include "TivoraBase.h"
#include "common/BootClock.h"

namespace {

using Pairs = std::unordered_map<std::string, std::string>;

const std::string kCamera = tivora::paths::kVendorCameraDir;
const std::string kDumpDir = kCamera + "/dumps";

// DebugBase with its state in reach: what loadConfig left behind, or armed without a configuration.
class Debug : public tivora::TivoraBase::DebugBase {
 public:
  Debug() = default;
  Debug(std::string dataDir, Pairs config) {
    mDataDir = std::move(dataDir);
    mConfig = std::move(config);
    mDebugEnabled = true;
  }
  bool load(const std::string& content) {
    tivora::test::writeFile(kCamera + "/TestDebug.dat", content);
    return loadConfig("TestDebug.dat");
  }
  const Pairs& config() const { return mConfig; }
  const std::string& dataDir() const { return mDataDir; }
  void disable() { mDebugEnabled = false; }
};

using DebugTest = tivora::test::DeviceTest;

TEST_F(DebugTest, DataDirectoryIsTheLoggersOrTheConfiguredOneWithoutBlanks) {
  Debug debug;
  EXPECT_TRUE(debug.load("DumpSource=true\n"));
  EXPECT_EQ(debug.dataDir(), kCamera);
  EXPECT_TRUE(debug.load("DataDir=" + kDumpDir + "\r\n"));
  EXPECT_EQ(debug.dataDir(), kDumpDir + "\r");
  for (const char* dir : {"", "/data/my dumps"}) {
    Debug fresh;
    EXPECT_FALSE(fresh.load(std::string("DataDir=") + dir + "\n")) << dir;
    EXPECT_FALSE(fresh.isDebugEnabled());
    EXPECT_EQ(fresh.dataDir(), dir);
  }
}

// A file replaces the pairs, even when its directory is refused; debugging, once on, stays on; no
// file leaves the pairs and resets the directory.
TEST_F(DebugTest, LaterLoadsReplaceThePairsButNeverSwitchDebuggingOff) {
  Debug debug;
  EXPECT_FALSE(debug.loadConfig("Missing.dat"));
  EXPECT_FALSE(debug.isDebugEnabled());
  ASSERT_TRUE(debug.load("DataDir=" + kDumpDir + "\nA=1\n"));
  EXPECT_FALSE(debug.load("DataDir=/a b\nB=2\n"));
  EXPECT_TRUE(debug.isDebugEnabled());
  EXPECT_EQ(debug.config(), (Pairs{{"DataDir", "/a b"}, {"B", "2"}}));
  EXPECT_FALSE(debug.loadConfig("Missing.dat"));
  EXPECT_TRUE(debug.isDebugEnabled());
  EXPECT_EQ(debug.config(), (Pairs{{"DataDir", "/a b"}, {"B", "2"}}));
  EXPECT_EQ(debug.dataDir(), kCamera);
}

TEST_F(DebugTest, PairsAreStoredAsWritten) {
  const std::pair<std::string, Pairs> files[] = {
      {"A=1\nA=2\n", {{"A", "1"}}},  // the first of two equal keys wins
      {" A = b \n\tC\t=\td\t\nE=true\r\n", {{" A ", " b "}, {"\tC\t", "\td\t"}, {"E", "true\r"}}},
      {"=x\nA=\nB=c=d\n", {{"", "x"}, {"A", ""}, {"B", "c=d"}}},
      {"\n\n# A=comment\nnothing\n\r\nLast=1", {{"# A", "comment"}, {"Last", "1"}}},
      {std::string("\x00\xff=\x7f\x00\n", 6), {{std::string("\x00\xff", 2), std::string("\x7f\x00", 2)}}},
  };
  Debug debug;
  for (const auto& [content, pairs] : files) {
    EXPECT_TRUE(debug.load(content));
    EXPECT_EQ(debug.config(), pairs) << content;
  }
}

// A dump holds the whole allocation as it lies, named by stride and height (which tell a reader
// how the rows lie) after a boot-time stamp; only the exact value "true" switches a key on.
TEST_F(DebugTest, KeyedDumpsWriteTheWholeAllocationUnderAStampedName) {
  std::filesystem::create_directories(kDumpDir);
  tivora::test::Nv12Frame frame(12, 6, 16, 0, 0, 0);
  frame.record.scanline = 8;
  for (size_t i = 0; i < frame.memory.size(); ++i) frame.memory[i] = static_cast<uint8_t>(i * 31 + 7);
  Debug debug(kDumpDir, {{"On", "true"}, {"True", "True"}, {"Blank", "true "}, {"Cr", "true\r"}, {"One", "1"}});
  tvr_image_buf_t empty = frame.record, huge = frame.record;
  empty.buf.buf_size = 0;
  huge.buf.buf_size = 0x80000000u;  // does not fit the signed count: nothing is read or written
  for (const char* key : {"True", "Blank", "Cr", "One", "Missing"})
    debug.dumpBufferByKey("src", &frame.record, key, "x");
  for (const tvr_image_buf_t* refused : {static_cast<tvr_image_buf_t*>(nullptr), &empty, &huge}) {
    debug.dumpBufferByKey("src", refused, "On", "x");
  }
  const int64_t before = tivora::bootTimeNs();
  debug.dumpBufferByKey("src", &frame.record, "On", "nv12");
  const int64_t after = tivora::bootTimeNs();
  const auto files = tivora::test::filesIn(kDumpDir);
  ASSERT_EQ(files.size(), 1u);
  std::smatch match;
  ASSERT_TRUE(std::regex_match(files[0], match, std::regex(R"((\d+)_src_16x6\.nv12)"))) << files[0];
  EXPECT_TRUE(std::stoll(match[1]) >= before && std::stoll(match[1]) <= after);
  EXPECT_EQ(tivora::test::readFile(kDumpDir + "/" + files[0]), std::string(frame.memory.begin(), frame.memory.end()));
  debug.dumpBufferByKey("src", &frame.record, "On", "nv12");
  EXPECT_EQ(tivora::test::filesIn(kDumpDir).size(), 2u) << "a second dump of one name keeps the first";
  debug.dumpBuffer(kDumpDir + "/null", nullptr, 3);
  debug.dumpBuffer(kDumpDir + "/empty", frame.memory.data(), 0);
  debug.disable();
  debug.dumpBufferByKey("src", &frame.record, "On", "nv12");
  debug.dumpBuffer(kDumpDir + "/off", frame.memory.data(), 3);
  EXPECT_EQ(tivora::test::filesIn(kDumpDir).size(), 2u);
}

// Folders that cannot take a file, as the tests' root user meets them (root ignores permission bits,
// so "read-only" is a folder that is not there or lies under a regular file): no dump, no folder.
TEST_F(DebugTest, FoldersThatCannotTakeAFileGetNoDump) {
  const tivora::test::Nv12Frame frame(4, 2, 4, 0, 0, 0);
  tivora::test::writeFile(kCamera + "/file", "x");
  for (const std::string& dir : {kDumpDir + "/missing", kCamera + "/file/below"}) {
    Debug debug(dir, {{"On", "true"}});
    debug.dumpBufferByKey("src", &frame.record, "On", "nv12");
    debug.dumpBuffer(dir + "/bytes.bin", frame.memory.data(), 4);
    EXPECT_FALSE(std::filesystem::exists(dir)) << dir;
  }
}

// Parameter dumps: what they write into a new file, read while the stream is still open: every line
// must have reached the file.
std::string written(const std::function<void(std::ofstream&)>& dumps) {
  tivora::test::writeFile(kCamera + "/params.csv", "");
  std::ofstream stream(kCamera + "/params.csv");
  dumps(stream);
  return tivora::test::readFile(kCamera + "/params.csv");
}

TEST_F(DebugTest, RecordsAreWrittenFieldByFieldAndFlushedLineByLine) {
  Debug debug(kCamera, {});
  tvr_create_param_t create{};
  for (size_t i = 0; i < 5; ++i) std::snprintf(create.dlc_path[i], sizeof create.dlc_path[i], "/models/net%zu.dlc", i);
  create.dlc_num = 2;
  create.runtime = TVR_RUNTIME_DSP;
  create.profile = TVR_PERF_PROFILE_BURST;
  create.priority = static_cast<tvr_exec_priority_t>(-7);
  create.cpu_fallback_mode = true;
  tvr_static_param_t statics{};
  statics.src_info = {static_cast<tvr_image_format_t>(-3), {4000000000u, 1080}, 1920, 1088};
  const tvr_input_param_t frameless{TVR_ROTATION_270, nullptr};
  alignas(8) const unsigned char opaque[8] = {};  // output and debug records belong to the processing
  EXPECT_EQ(written([&](auto& s) {
              debug.dumpBaseCreateParam(s, &create);
              debug.dumpBaseStaticParam(s, &statics);
              debug.dumpBaseInputParam(s, &frameless);
              debug.dumpBaseOutputParam(s, reinterpret_cast<const tvr_output_param_t*>(opaque));
              debug.dumpBaseDebugParam(s, reinterpret_cast<const tvr_debug_param_t*>(opaque));
            }),
            "Create parameter,\n,dlc_num,2\n,dlc_path[0],/models/net0.dlc\n,dlc_path[1],/models/net1.dlc\n"
            ",runtime,2\n,profile,6\n,priority,-7\n,cpu_fallback_mode,1\n,use_user_buffers,0\n"
            "Static parameter,\n,src_info\n,,format,-3\n,,size\n,,,w,4000000000\n,,,h,1080\n,,stride,1920\n"
            ",,scanline,1088\nInput parameter,\n,rotation,3\n,p_src,NULL\nOutput parameter,\nDebug parameter,\n");

  // At most the record's five paths, however many it claims; bools in the stream's own format.
  create.dlc_num = 1000;
  std::memset(create.dlc_path[4], 'p', sizeof create.dlc_path[4]);  // and no terminator
  const std::string text = written([&](auto& s) {
    s << std::boolalpha;
    debug.dumpBaseCreateParam(s, &create);
  });
  EXPECT_NE(text.find(",dlc_path[4]," + std::string(256, 'p') + "\n,runtime,2\n"), std::string::npos) << text;
  EXPECT_NE(text.find(",cpu_fallback_mode,true\n,use_user_buffers,false\n"), std::string::npos) << text;
}

TEST_F(DebugTest, InputRecordNestsTheFrameAndPrintsLow32BitsOfAddresses) {
  Debug debug(kCamera, {});
  tvr_image_buf_t frame{};
  frame.buf = {reinterpret_cast<uint8_t*>(static_cast<uintptr_t>(0x123456789abcdef0ull)), 3110400, -1,
               reinterpret_cast<void*>(static_cast<uintptr_t>(0x1000)), nullptr};
  frame.format = TVR_FORMAT_NV21;
  frame.size = {1920, 1080};
  frame.offset[1] = 2088960;
  frame.offset[2] = 4294967295u;
  frame.stride = 1920;
  frame.scanline = 1088;
  frame.crop = {{-4, 8}, {1912, 1072}};
  const tvr_input_param_t record{static_cast<tvr_rotation_t>(-1), &frame};
  EXPECT_EQ(written([&](auto& s) { debug.dumpBaseInputParam(s, &record); }),
            "Input parameter,\n,rotation,-1\n,p_src\n,,buf\n,,,p_base,9abcdef0\n,,,buf_size,3110400\n,,,heap_id,-1\n"
            ",,,native,00001000\n,,,native_handle,00000000\n,,format,3\n,,size\n,,,w,1920\n,,,h,1080\n"
            ",,offset[0],0\n,,offset[1],2088960\n,,offset[2],4294967295\n,,stride,1920\n,,scanline,1088\n,,crop\n"
            ",,,pos\n,,,,x,-4\n,,,,y,8\n,,,size\n,,,,w,1912\n,,,,h,1072\n");
  // A null record, a stream that failed or is not open, debugging off: the stream stays as it was.
  EXPECT_EQ(written([&](auto& s) {
              debug.dumpBaseInputParam(s, nullptr);
              s.setstate(std::ios::failbit);
              debug.dumpBaseInputParam(s, &record);
              EXPECT_EQ(s.rdstate(), std::ios::failbit);
            }),
            "");
  std::ofstream closed;
  debug.dumpBaseInputParam(closed, &record);
  EXPECT_TRUE(closed.good());
  debug.disable();
  EXPECT_EQ(written([&](auto& s) { debug.dumpBaseInputParam(s, &record); }), "");
}

}  // namespace
