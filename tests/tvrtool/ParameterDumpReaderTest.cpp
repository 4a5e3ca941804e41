// The host records a replay reads back from the library's own parameter dumps.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <tuple>

#include "ParameterDumpReader.h"
#include "TivoraBase.h"
#include "ToolProcess.h"

namespace {

using tvrtool::readParameterDump;

class ParameterDumpReaderTest : public tvrtool::test::CaseFolderTest {};

// Debugging on without a configuration file.
class Dumper : public tivora::TivoraBase::DebugBase {
 public:
  Dumper() { mDebugEnabled = true; }
};

auto fields(const tvr_image_buf_t& i) {
  return std::make_tuple(i.buf.buf_size, i.buf.heap_id, i.format, i.size.w, i.size.h, i.offset[0], i.offset[1],
                         i.offset[2], i.stride, i.scanline, i.crop.pos.x, i.crop.pos.y, i.crop.size.w, i.crop.size.h);
}

TEST_F(ParameterDumpReaderTest, ReadsBackEveryFieldTheLibraryDumpedAndPassesOverOtherRecords) {
  tvr_create_param_t create{};
  create.dlc_num = 1;
  std::strcpy(create.dlc_path[0], "/vendor/etc/model,v2.dlc");
  const tvr_static_param_t stream{{TVR_FORMAT_NV21, {1920, 1080}, 1984, 1088}};
  uint8_t pixels[4];
  tvr_image_buf_t image{};
  image.buf = {pixels, 4294967295u, -3, pixels, pixels};
  image.format = TVR_FORMAT_NV12;
  image.size = {1920, 1080};
  image.offset[1] = 2088960;
  image.offset[2] = 7;
  image.stride = 1984;
  image.scanline = 1088;
  image.crop = {{-2, 4}, {640, 480}};
  const tvr_input_param_t input{TVR_ROTATION_270, &image}, empty{TVR_ROTATION_90, nullptr};
  {
    std::ofstream out(path("params.csv"));
    Dumper dumper;
    dumper.dumpBaseCreateParam(out, &create);
    dumper.dumpBaseStaticParam(out, &stream);
    dumper.dumpBaseInputParam(out, &input);
    dumper.dumpBaseOutputParam(out, reinterpret_cast<const tvr_output_param_t*>(pixels));  // its heading only
    dumper.dumpBaseInputParam(out, &empty);
  }
  std::string error;
  const auto dump = readParameterDump(tvrtool::test::readFile(path("params.csv")), error);
  ASSERT_TRUE(dump) << error;
  ASSERT_EQ(dump->statics.size(), 1u);
  const tvr_stream_info_t& read = dump->statics[0].src_info;
  EXPECT_EQ(std::tie(read.format, read.size.w, read.size.h, read.stride, read.scanline),
            std::make_tuple(TVR_FORMAT_NV21, 1920u, 1080u, 1984u, 1088u));
  ASSERT_EQ(dump->inputs.size(), 2u);
  EXPECT_EQ(std::tie(dump->inputs[0].line, dump->inputs[0].rotation, dump->inputs[0].hasSource),
            std::make_tuple(size_t{17}, TVR_ROTATION_270, true));
  EXPECT_EQ(fields(dump->inputs[0].source), fields(image));
  EXPECT_EQ(dump->inputs[0].source.buf.p_base, nullptr);  // a device's address means nothing here
  EXPECT_EQ(std::tie(dump->inputs[1].rotation, dump->inputs[1].hasSource), std::make_tuple(TVR_ROTATION_90, false));
}

TEST_F(ParameterDumpReaderTest, SaysAtWhichLineWhatIsWrong) {
  const std::pair<std::string, std::string> cases[] = {
      {"Input parameter,\n,rotation,0\n,p_src\n,,stride,12\n", "the record of line 1 has no p_src.buf.buf_size"},
      {"Input parameter,\n,rotation,99999999999\n", "line 2: rotation '99999999999' is not a number from -2147483648 to 2147483647"},
      {"Static parameter,\n,src_info\n,,format,2\n,,size\n,,,w,-1\n", "line 5: src_info.size.w '-1' is not a number from 0 to 4294967295"},
      {"Static parameter,\n,src_info\n,,,w,1\n", "line 3: ',,,w,1' does not nest under the line before it"},
      {",rotation,0\n", "line 1: a field before the first heading"},
      {"Input parameter,\n\nFrame 3\n", "line 3: 'Frame 3' is no line of a parameter dump"},
      {"Input parameter,\r\n,rotation,1\r\n,p_src,NULL\r\n", ""},  // CRLF, as an editor may leave it
  };
  for (const auto& [text, expected] : cases) {
    std::string error;
    EXPECT_EQ(readParameterDump(text, error).has_value(), expected.empty()) << text;
    EXPECT_EQ(error, expected) << text;
  }
}

}  // namespace
