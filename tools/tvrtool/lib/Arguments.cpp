#include "Arguments.h"

namespace tvrtool {

namespace {

const OptionSpec* findLong(const std::vector<OptionSpec>& specs, const std::string& name) {
  for (const OptionSpec& spec : specs) {
    if (spec.longName == name) return &spec;
  }
  return nullptr;
}

const OptionSpec* findShort(const std::vector<OptionSpec>& specs, char name) {
  for (const OptionSpec& spec : specs) {
    if (spec.shortName != 0 && spec.shortName == name) return &spec;
  }
  return nullptr;
}

}  // namespace

std::string parseArguments(const std::vector<std::string>& args, const std::vector<OptionSpec>& specs,
                           Arguments& result) {
  bool optionsEnded = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    // "-" alone names standard input or output, so it is an operand.
    if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
      result.operands.push_back(arg);
      continue;
    }
    if (arg == "--") {
      optionsEnded = true;
      continue;
    }

    const bool isLong = arg[1] == '-';
    const std::string::size_type equals = isLong ? arg.find('=') : std::string::npos;
    const std::string name =
        isLong ? arg.substr(2, equals == std::string::npos ? std::string::npos : equals - 2) : arg.substr(1, 1);
    const OptionSpec* spec = isLong ? findLong(specs, name) : findShort(specs, arg[1]);
    const std::string shown = isLong ? "--" + name : "-" + name;
    if (spec == nullptr) return "unknown option '" + shown + "'";

    if (!spec->takesValue) {
      if (equals != std::string::npos || (!isLong && arg.size() > 2)) return "option '" + shown + "' takes no value";
      result.options[spec->longName] = "";
      continue;
    }
    if (equals != std::string::npos) {
      result.options[spec->longName] = arg.substr(equals + 1);
    } else if (!isLong && arg.size() > 2) {
      result.options[spec->longName] = arg.substr(2);
    } else if (i + 1 < args.size()) {
      result.options[spec->longName] = args[++i];
    } else {
      return "option '" + shown + "' needs a value";
    }
  }
  return "";
}

std::optional<uint32_t> parseCount(const std::string& text, uint32_t max) {
  if (text.empty() || text.size() > 10) return std::nullopt;
  uint64_t value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<uint64_t>(c - '0');
  }
  if (value < 1 || value > max) return std::nullopt;
  return static_cast<uint32_t>(value);
}

}  // namespace tvrtool
