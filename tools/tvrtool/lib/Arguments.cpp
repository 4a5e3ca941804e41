#include "Arguments.h"

namespace tvrtool {

namespace {

const OptionDefinition* findLong(const std::vector<OptionDefinition>& definitions, const std::string& name) {
  for (const OptionDefinition& definition : definitions) {
    if (definition.longName == name) return &definition;
  }
  return nullptr;
}

const OptionDefinition* findShort(const std::vector<OptionDefinition>& definitions, char name) {
  for (const OptionDefinition& definition : definitions) {
    if (definition.shortName != 0 && definition.shortName == name) return &definition;
  }
  return nullptr;
}

}  // namespace

std::string parseArguments(const std::vector<std::string>& args, const std::vector<OptionDefinition>& definitions,
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
    const OptionDefinition* definition = isLong ? findLong(definitions, name) : findShort(definitions, arg[1]);
    const std::string shown = isLong ? "--" + name : "-" + name;
    if (definition == nullptr) return "unknown option '" + shown + "'";

    if (!definition->takesValue) {
      if (equals != std::string::npos || (!isLong && arg.size() > 2)) return "option '" + shown + "' takes no value";
      result.options[definition->longName] = "";
      result.given.emplace_back(definition->longName, "");
      continue;
    }
    if (equals != std::string::npos) {
      result.options[definition->longName] = arg.substr(equals + 1);
    } else if (!isLong && arg.size() > 2) {
      result.options[definition->longName] = arg.substr(2);
    } else if (i + 1 < args.size()) {
      result.options[definition->longName] = args[++i];
    } else {
      return "option '" + shown + "' needs a value";
    }
    result.given.emplace_back(definition->longName, result.options[definition->longName]);
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
