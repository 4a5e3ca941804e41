// A subcommand of tvrtool: `tvrtool NAME [ARG]...` runs it with the arguments after its name.
// A new subcommand is one file that defines its Subcommand, plus one line in main.cpp's list.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace tvrtool {

// Exit statuses, the same for every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;  // the work was refused or failed
inline constexpr int kExitUsage = 2;   // wrong usage

struct Subcommand {
  const char* name;
  const char* summary;  // one line for `tvrtool --help`
  int (*run)(const std::vector<std::string>& args);
  void (*printHelp)(std::FILE* to);
};

// Says on standard error what was wrong with the command line of `command` ("tvrtool",
// "tvrtool view") and where its help is; returns kExitUsage.
inline int usageError(const std::string& command, const std::string& message) {
  std::fprintf(stderr, "%s: %s\nTry '%s --help'.\n", command.c_str(), message.c_str(), command.c_str());
  return kExitUsage;
}

const Subcommand& viewCommand();
const Subcommand& runCommand();
const Subcommand& compareCommand();

}  // namespace tvrtool
