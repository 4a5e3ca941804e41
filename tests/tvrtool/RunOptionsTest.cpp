// The command line of `tvrtool run`.
#include <gtest/gtest.h>

#include "RunOptions.h"

namespace {

using tvrtool::FrameSource;
using tvrtool::RunOptions;

RunOptions parsed(const std::vector<std::string>& args) {
  RunOptions options;
  EXPECT_EQ(tvrtool::parseRunOptions(args, options), "");
  return options;
}

TEST(RunOptionsTest, BareCommandRunsTheChartWithDefaults) {
  const RunOptions options = parsed({});
  EXPECT_EQ(options.source, FrameSource::Chart);
  EXPECT_EQ(options.inputWidth, 224u);
  EXPECT_EQ(options.inputHeight, 224u);
  EXPECT_EQ(options.rotation, 0u);
  EXPECT_FALSE(options.crop || options.model || options.debugDir || options.traceFile);
  EXPECT_EQ(options.outputDir, "tvrtool-run-out");
}

TEST(RunOptionsTest, FileKindComesFromItsExtension) {
  EXPECT_EQ(parsed({"photo.PNG"}).source, FrameSource::PngFile);
  EXPECT_EQ(parsed({"5000_src_64x48.nv12"}).source, FrameSource::Nv12File);
  EXPECT_EQ(parsed({"frame.yuv", "--width=64", "--height=48"}).sourcePath, "frame.yuv");
}

TEST(RunOptionsTest, EveryOptionReachesItsField) {
  const RunOptions options =
      parsed({"-r", "270", "--crop", "2,4,6,8", "--input-size", "320x320", "-n", "5", "--trace", "t.json", "--debug",
              "d", "-o", "out", "--runtime", "dsp", "-m", "m.dlc", "f.nv12", "--stride", "80", "--scanline", "50"});
  EXPECT_EQ(options.rotation, 270u);
  ASSERT_TRUE(options.crop);
  EXPECT_EQ(options.crop->x + options.crop->y * 10 + options.crop->width * 100 + options.crop->height * 1000, 8642u);
  EXPECT_EQ(options.inputWidth, 320u);
  EXPECT_EQ(options.frames, 5u);
  EXPECT_EQ(options.traceFile, "t.json");
  EXPECT_EQ(options.debugDir, "d");
  EXPECT_EQ(options.outputDir, "out");
  EXPECT_EQ(options.runtime, tvrtool::Runtime::Dsp);
  EXPECT_EQ(options.model, "m.dlc");
  EXPECT_EQ(options.stride, 80u);
  EXPECT_EQ(options.scanline, 50u);
}

TEST(RunOptionsTest, WrongValuesAreRefusedWithAMessage) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--rotation", "45"},        {"--rotation", "360"},        {"--rotation", "-90"},
      {"--crop", "1,2,3"},         {"--crop", "0,0,3,4"},        {"--crop", "-1,0,2,2"},
      {"--crop", "0,0,0,2"},       {"--input-size", "223x224"},  {"--input-size", "224"},
      {"--input-size", "0x2"},     {"--input-size", "8192x8192"}, {"--frames", "0"},
      {"--runtime", "npu"},        {"--width", "64"},            {"a.png", "--height", "48"},
      {"a.nv12", "b.nv12"},        {"--model="},                 {"-o", ""},
      {"--rotation", "90", "--input-size", "320x240"},           {"--bogus"},
  };
  for (const auto& args : wrong) {
    RunOptions options;
    EXPECT_NE(tvrtool::parseRunOptions(args, options), "") << args[0] << " " << (args.size() > 1 ? args[1] : "");
  }
  EXPECT_EQ(parsed({"--rotation", "180", "--input-size", "320x240"}).rotation, 180u);
}

}  // namespace
