// Option parsing of tvrtool's subcommands.
#include <gtest/gtest.h>

#include "Arguments.h"

namespace {

using tvrtool::Arguments;
using tvrtool::parseArguments;

const std::vector<tvrtool::OptionDefinition> kDefinitions = {{"width", 0, true}, {"output", 'o', true}, {"help", 'h', false}};

Arguments parsed(const std::vector<std::string>& args) {
  Arguments result;
  EXPECT_EQ(parseArguments(args, kDefinitions, result), "");
  return result;
}

std::string errorOf(const std::vector<std::string>& args) {
  Arguments result;
  return parseArguments(args, kDefinitions, result);
}

TEST(ArgumentsTest, EveryValueFormReachesTheLongName) {
  for (const auto& args :
       std::vector<std::vector<std::string>>{{"--output", "a.png"}, {"--output=a.png"}, {"-o", "a.png"}, {"-oa.png"}}) {
    EXPECT_EQ(parsed(args).options, (std::map<std::string, std::string>{{"output", "a.png"}})) << args[0];
  }
}

TEST(ArgumentsTest, OperandsMayStandBetweenOptionsAndAfterDoubleDash) {
  const Arguments result = parsed({"a.nv12", "--width", "4", "b.nv12", "--", "--help", "-"});
  EXPECT_EQ(result.operands, (std::vector<std::string>{"a.nv12", "b.nv12", "--help", "-"}));
  EXPECT_EQ(result.options, (std::map<std::string, std::string>{{"width", "4"}}));
}

TEST(ArgumentsTest, LaterOccurrenceWinsAndFlagsHaveNoValue) {
  const Arguments result = parsed({"--width=1", "--width=2", "-h"});
  EXPECT_EQ(result.options.at("width"), "2");
  EXPECT_TRUE(result.has("help"));
  EXPECT_EQ(parsed({"--width="}).options.at("width"), "");
}

TEST(ArgumentsTest, MistakesAreNamed) {
  EXPECT_EQ(errorOf({"--colour"}), "unknown option '--colour'");
  EXPECT_EQ(errorOf({"-x"}), "unknown option '-x'");
  EXPECT_EQ(errorOf({"--width"}), "option '--width' needs a value");
  EXPECT_EQ(errorOf({"-o"}), "option '-o' needs a value");
  EXPECT_EQ(errorOf({"--help=yes"}), "option '--help' takes no value");
  EXPECT_EQ(errorOf({"-hv"}), "option '-h' takes no value");
}

TEST(ArgumentsTest, CountsAreDigitsWithinRange) {
  EXPECT_EQ(tvrtool::parseCount("1", 10), 1u);
  EXPECT_EQ(tvrtool::parseCount("0010", 10), 10u);
  EXPECT_EQ(tvrtool::parseCount("4294967295", 4294967295u), 4294967295u);
  for (const char* bad : {"", "0", "11", "-1", "+1", " 1", "1 ", "1e3", "0x10", "99999999999"}) {
    EXPECT_FALSE(tvrtool::parseCount(bad, 10)) << bad;
  }
}

}  // namespace
