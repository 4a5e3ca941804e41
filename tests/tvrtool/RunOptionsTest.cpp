// The command line of `tvrtool run`.
#include <gtest/gtest.h>

#include "RunOptions.h"

namespace {

using tvrtool::RunOptions;

RunOptions parsed(const std::vector<std::string>& args) {
  RunOptions options;
  EXPECT_EQ(tvrtool::parseRunOptions(args, options), "");
  return options;
}

// The end-to-end runs use the other options, each read by the same few lines as these.
TEST(RunOptionsTest, OptionsReachTheirFieldsAndRepeatedOptionsStayInOrder) {
  const RunOptions options = parsed({"-p", "lib.so", "--resource-type", "7", "--option", "a=1", "--option=b==", "-r",
                                     "270", "-n", "5", "--runtime", "dsp", "--log-level", "V", "f.nv12", "--stride",
                                     "80", "--scanline", "50"});
  EXPECT_EQ(options.processing, "lib.so");
  EXPECT_EQ(options.resourceType, 7u);
  EXPECT_EQ(options.pluginOptions, (std::vector<std::pair<std::string, std::string>>{{"a", "1"}, {"b", "="}}));
  EXPECT_EQ(options.rotation * 10 + *options.frames, 2705u);
  EXPECT_EQ(options.runtime, tvrtool::Runtime::Dsp);
  EXPECT_EQ(options.logLevel, 'V');
  EXPECT_EQ(options.source, "f.nv12");
  EXPECT_EQ(*options.stride * 100 + *options.scanline, 8050u);
}

TEST(RunOptionsTest, WrongValuesAreRefusedWithAMessage) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--rotation", "45"},      {"--rotation", "-90"},     {"--crop", "1,2,3"},       {"--crop", "1,0,2,2"},
      {"--crop", "0,3,2,2"},     {"--crop", "0,0,3,4"},     {"--crop", "0,0,0,2"},     {"--frames", "0"},
      {"--resource-type", "8"},  {"--option", "=1"},        {"--option", "key"},       {"--log-level", "X"},
      {"--runtime", "npu"},      {"--width", "64"},         {"a.png", "--height", "48"}, {"a.y4m", "--stride", "64"},
      {"a.nv12", "b.nv12"},      {"--model="},              {"-o", ""},                {"--bogus"},
  };
  for (const auto& args : wrong) {
    RunOptions options;
    EXPECT_NE(tvrtool::parseRunOptions(args, options), "") << args[0] << " " << (args.size() > 1 ? args[1] : "");
  }
}

}  // namespace
