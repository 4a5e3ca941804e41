// Command-line options of a subcommand: "--name value", "--name=value", "-n value", "-nvalue",
// flags without a value, "--" to end the options, and operands anywhere in between.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tvrtool {

struct OptionDefinition {
  std::string longName;  // without the leading "--"
  char shortName;        // 0 when the option has none
  bool takesValue;
};

struct Arguments {
  std::map<std::string, std::string> options;  // by long name; a flag maps to ""; the last occurrence wins
  std::vector<std::pair<std::string, std::string>> given;  // every occurrence, in order, by long name
  std::vector<std::string> operands;

  bool has(const std::string& longName) const { return options.count(longName) != 0; }
};

// Parses `args` against `definitions`. Returns an error message for the user (an unknown option, a
// missing value), or an empty string.
std::string parseArguments(const std::vector<std::string>& args, const std::vector<OptionDefinition>& definitions,
                           Arguments& result);

// A decimal count from 1 to `max`, digits only; nothing otherwise.
std::optional<uint32_t> parseCount(const std::string& text, uint32_t max);

}  // namespace tvrtool
