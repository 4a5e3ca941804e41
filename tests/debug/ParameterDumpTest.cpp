// The text form of the host records, and the guards that keep a dump from touching its stream.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>
#include <tuple>
#include <vector>

#include "DebugAccess.h"
#include "DeviceFiles.h"

namespace {

using tivora::test::ArmedDebug;

const std::string kStreamFile = std::string(tivora::paths::kVendorCameraDir) + "/params.csv";

// Receives what a dump writes in place of the file, and notes the text written before each flush.
class RecordingBuffer : public std::streambuf {
 public:
  std::string text;
  std::vector<std::string> flushedAt;

 protected:
  int_type overflow(int_type c) override {
    if (c != traits_type::eof()) text.push_back(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* s, std::streamsize n) override {
    text.append(s, static_cast<size_t>(n));
    return n;
  }
  int sync() override {
    flushedAt.push_back(text);
    return 0;
  }
};

// An ofstream open on a device file whose writes go to a RecordingBuffer.
struct RecordedStream {
  std::ofstream stream;
  RecordingBuffer buffer;

  explicit RecordedStream(bool open = true) {
    if (open) {
      tivora::test::createEmptyFile(kStreamFile);
      stream.open(kStreamFile);
    }
    stream.std::ios::rdbuf(&buffer);
  }
  ~RecordedStream() { stream.std::ios::rdbuf(nullptr); }
};

tvr_create_param_t createRecord(uint32_t paths) {
  tvr_create_param_t record{};
  for (size_t i = 0; i < 5; ++i) std::snprintf(record.dlc_path[i], sizeof record.dlc_path[i], "/models/net%zu.dlc", i);
  record.dlc_num = paths;
  record.reserved = 0x5a;
  record.runtime = TVR_RUNTIME_DSP;
  record.profile = TVR_PERF_PROFILE_BURST;
  record.priority = static_cast<tvr_exec_priority_t>(-7);
  record.cpu_fallback_mode = true;
  record.use_user_buffers = false;
  record.debug_mode = true;
  return record;
}

class ParameterDumpTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    out = std::make_unique<RecordedStream>();  // on the wiped device
  }
  ArmedDebug debug{tivora::paths::kVendorCameraDir};
  std::unique_ptr<RecordedStream> out;
};

TEST_F(ParameterDumpTest, CreateRecordWritesOnePathLinePerNetwork) {
  const tvr_create_param_t record = createRecord(2);
  debug.dumpBaseCreateParam(out->stream, &record);
  EXPECT_EQ(out->buffer.text,
            "Create parameter,\n"
            ",dlc_num,2\n"
            ",dlc_path[0],/models/net0.dlc\n"
            ",dlc_path[1],/models/net1.dlc\n"
            ",runtime,2\n"
            ",profile,6\n"
            ",priority,-7\n"
            ",cpu_fallback_mode,1\n"
            ",use_user_buffers,0\n");
}

TEST_F(ParameterDumpTest, CreateRecordFollowsTheStreamsBoolFormat) {
  const tvr_create_param_t record = createRecord(0);
  out->stream << std::boolalpha;
  debug.dumpBaseCreateParam(out->stream, &record);
  EXPECT_EQ(out->buffer.text,
            "Create parameter,\n,dlc_num,0\n,runtime,2\n,profile,6\n,priority,-7\n"
            ",cpu_fallback_mode,true\n,use_user_buffers,false\n");
}

TEST_F(ParameterDumpTest, CreateRecordNeverReadsPastItsFivePaths) {
  tvr_create_param_t record = createRecord(1000);
  std::memset(record.dlc_path[4], 'p', sizeof record.dlc_path[4]);  // and no terminator
  debug.dumpBaseCreateParam(out->stream, &record);
  EXPECT_NE(out->buffer.text.find(",dlc_num,1000\n"), std::string::npos);
  EXPECT_NE(out->buffer.text.find(",dlc_path[4]," + std::string(256, 'p') + "\n"), std::string::npos);
  EXPECT_EQ(out->buffer.text.find(",dlc_path[5]"), std::string::npos);
}

TEST_F(ParameterDumpTest, StaticRecordPrintsFormatSignedAndSizesUnsigned) {
  tvr_static_param_t record{};
  record.src_info = {static_cast<tvr_image_format_t>(-3), {4000000000u, 1080}, 1920, 1088};
  debug.dumpBaseStaticParam(out->stream, &record);
  EXPECT_EQ(out->buffer.text,
            "Static parameter,\n"
            ",src_info\n"
            ",,format,-3\n"
            ",,size\n"
            ",,,w,4000000000\n"
            ",,,h,1080\n"
            ",,stride,1920\n"
            ",,scanline,1088\n");
}

TEST_F(ParameterDumpTest, InputRecordWithoutFrameIsThreeLines) {
  const tvr_input_param_t record{TVR_ROTATION_270, nullptr};
  debug.dumpBaseInputParam(out->stream, &record);
  EXPECT_EQ(out->buffer.text, "Input parameter,\n,rotation,3\n,p_src,NULL\n");
}

TEST_F(ParameterDumpTest, InputRecordNestsTheFrameAndPrintsLow32BitsOfAddresses) {
  tvr_image_buf_t frame{};
  frame.buf.p_base = reinterpret_cast<uint8_t*>(static_cast<uintptr_t>(0x123456789abcdef0ull));
  frame.buf.buf_size = 3110400;
  frame.buf.heap_id = -1;
  frame.buf.native = reinterpret_cast<void*>(static_cast<uintptr_t>(0x1000));
  frame.buf.native_handle = nullptr;
  frame.format = TVR_FORMAT_NV21;
  frame.size = {1920, 1080};
  frame.offset[0] = 0;
  frame.offset[1] = 2088960;
  frame.offset[2] = 4294967295u;
  frame.stride = 1920;
  frame.scanline = 1088;
  frame.crop = {{-4, 8}, {1912, 1072}};
  const tvr_input_param_t record{static_cast<tvr_rotation_t>(-1), &frame};
  debug.dumpBaseInputParam(out->stream, &record);
  EXPECT_EQ(out->buffer.text,
            "Input parameter,\n"
            ",rotation,-1\n"
            ",p_src\n"
            ",,buf\n"
            ",,,p_base,9abcdef0\n"
            ",,,buf_size,3110400\n"
            ",,,heap_id,-1\n"
            ",,,native,00001000\n"
            ",,,native_handle,00000000\n"
            ",,format,3\n"
            ",,size\n"
            ",,,w,1920\n"
            ",,,h,1080\n"
            ",,offset[0],0\n"
            ",,offset[1],2088960\n"
            ",,offset[2],4294967295\n"
            ",,stride,1920\n"
            ",,scanline,1088\n"
            ",,crop\n"
            ",,,pos\n"
            ",,,,x,-4\n"
            ",,,,y,8\n"
            ",,,size\n"
            ",,,,w,1912\n"
            ",,,,h,1072\n");
}

TEST_F(ParameterDumpTest, OutputAndDebugRecordsWriteTheirHeadingOnly) {
  alignas(8) unsigned char opaque[64] = {};  // their contents belong to the processing
  debug.dumpBaseOutputParam(out->stream, reinterpret_cast<const tvr_output_param_t*>(opaque));
  debug.dumpBaseDebugParam(out->stream, reinterpret_cast<const tvr_debug_param_t*>(opaque));
  EXPECT_EQ(out->buffer.text, "Output parameter,\nDebug parameter,\n");
}

TEST_F(ParameterDumpTest, EveryLineIsFlushedOnItsOwn) {
  tvr_image_buf_t frame{};
  const tvr_input_param_t record{TVR_ROTATION_0, &frame};
  debug.dumpBaseInputParam(out->stream, &record);
  std::istringstream lines(out->buffer.text);
  std::string expected, line;
  std::vector<std::string> flushes;
  while (std::getline(lines, line)) flushes.push_back(expected += line + "\n");
  EXPECT_EQ(out->buffer.flushedAt, flushes);
}

// Every dump, under every guard, leaves its stream untouched.
enum class Guard { DebugOff, NullRecord, NotOpen, Failed, Bad };
enum class Dump { Create, Static, Input, Output, Debug };

class ParameterDumpGuardTest : public tivora::test::DeviceTest,
                               public ::testing::WithParamInterface<std::tuple<Dump, Guard>> {};

TEST_P(ParameterDumpGuardTest, WritesNothing) {
  const auto [dump, guard] = GetParam();
  ArmedDebug debug(tivora::paths::kVendorCameraDir);
  if (guard == Guard::DebugOff) debug.disable();
  RecordedStream out(guard != Guard::NotOpen);
  if (guard == Guard::Failed) out.stream.setstate(std::ios::failbit);
  if (guard == Guard::Bad) out.stream.setstate(std::ios::badbit);
  const std::ios::iostate before = out.stream.rdstate();

  const tvr_create_param_t create = createRecord(1);
  const tvr_static_param_t statics{};
  const tvr_input_param_t input{};
  alignas(8) unsigned char opaque[8] = {};
  const bool null = guard == Guard::NullRecord;
  switch (dump) {
    case Dump::Create:
      debug.dumpBaseCreateParam(out.stream, null ? nullptr : &create);
      break;
    case Dump::Static:
      debug.dumpBaseStaticParam(out.stream, null ? nullptr : &statics);
      break;
    case Dump::Input:
      debug.dumpBaseInputParam(out.stream, null ? nullptr : &input);
      break;
    case Dump::Output:
      debug.dumpBaseOutputParam(out.stream, null ? nullptr : reinterpret_cast<const tvr_output_param_t*>(opaque));
      break;
    case Dump::Debug:
      debug.dumpBaseDebugParam(out.stream, null ? nullptr : reinterpret_cast<const tvr_debug_param_t*>(opaque));
      break;
  }
  EXPECT_EQ(out.buffer.text, "");
  EXPECT_TRUE(out.buffer.flushedAt.empty());
  EXPECT_EQ(out.stream.rdstate(), before);
}

INSTANTIATE_TEST_SUITE_P(AllDumps, ParameterDumpGuardTest,
                         ::testing::Combine(::testing::Values(Dump::Create, Dump::Static, Dump::Input, Dump::Output,
                                                              Dump::Debug),
                                            ::testing::Values(Guard::DebugOff, Guard::NullRecord, Guard::NotOpen,
                                                              Guard::Failed, Guard::Bad)));

}  // namespace
