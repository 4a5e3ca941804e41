// Option parsing of tvrtool's subcommands.
#include <gtest/gtest.h>

#include "Arguments.h"

namespace {

using tvrtool::Arguments;

const std::vector<tvrtool::OptionDefinition> kDefinitions = {{"width", 0, true}, {"output", 'o', true}, {"help", 'h', false}};

std::string parse(const std::vector<std::string>& args, Arguments& result) {
  return tvrtool::parseArguments(args, kDefinitions, result);
}

TEST(ArgumentsTest, EveryValueFormReachesTheLongName) {
  for (const auto& args :
       std::vector<std::vector<std::string>>{{"--output", "a.png"}, {"--output=a.png"}, {"-o", "a.png"}, {"-oa.png"}}) {
    Arguments result;
    EXPECT_EQ(parse(args, result) + result.options["output"], "a.png") << args[0];
  }
}

TEST(ArgumentsTest, OperandsMayStandAnywhereAndEveryOccurrenceIsKeptInOrder) {
  Arguments result;
  EXPECT_EQ(parse({"a.nv12", "--width=1", "b.nv12", "-h", "--width", "2", "--", "--help", "-"}, result), "");
  EXPECT_EQ(result.operands, (std::vector<std::string>{"a.nv12", "b.nv12", "--help", "-"}));
  EXPECT_EQ(result.options, (std::map<std::string, std::string>{{"width", "2"}, {"help", ""}}));
  EXPECT_EQ(result.given, (std::vector<std::pair<std::string, std::string>>{{"width", "1"}, {"help", ""}, {"width", "2"}}));
}

TEST(ArgumentsTest, MistakesAreNamed) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"--colour"}, "unknown option '--colour'"},   {{"-x"}, "unknown option '-x'"},
      {{"--width"}, "option '--width' needs a value"}, {{"-o"}, "option '-o' needs a value"},
      {{"--help=yes"}, "option '--help' takes no value"}, {{"-hv"}, "option '-h' takes no value"}};
  for (const auto& [args, message] : cases) {
    Arguments result;
    EXPECT_EQ(parse(args, result), message);
  }
}

TEST(ArgumentsTest, CountsAreDigitsWithinRange) {
  EXPECT_EQ(tvrtool::parseCount("0010", 10), 10u);
  EXPECT_EQ(tvrtool::parseCount("4294967295", 4294967295u), 4294967295u);
  for (const char* bad : {"", "0", "11", "-1", "+1", " 1", "1e3", "0x10", "99999999999"}) {
    EXPECT_FALSE(tvrtool::parseCount(bad, 10)) << bad;
  }
}

}  // namespace
