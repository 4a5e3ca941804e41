// tvrtool: command-line tools for camera engineers working with libvexa_tivorabase.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Subcommand.h"

namespace {

using tvrtool::Subcommand;

// In the order the help lists them.
const std::vector<const Subcommand*>& subcommands() {
  static const std::vector<const Subcommand*> all = {&tvrtool::runCommand(), &tvrtool::viewCommand(),
                                                             &tvrtool::compareCommand()};
  return all;
}

const Subcommand* find(const std::string& name) {
  for (const Subcommand* command : subcommands()) {
    if (name == command->name) return command;
  }
  return nullptr;
}

void printHelp(std::FILE* to) {
  std::fputs(
      "Usage: tvrtool COMMAND [ARG]...\n"
      "\n"
      "Tools for camera engineers working with libvexa_tivorabase.\n"
      "\n"
      "Commands:\n",
      to);
  for (const Subcommand* command : subcommands()) std::fprintf(to, "  %-8s%s\n", command->name, command->summary);
  std::fputs(
      "  help    show the help of a command\n"
      "\n"
      "Options:\n"
      "  -h, --help     show this help and exit\n"
      "      --version  show the version and exit\n"
      "\n"
      "Run 'tvrtool help COMMAND' or 'tvrtool COMMAND --help' for a command's options.\n"
      "\n"
      "Examples:\n"
      "  tvrtool run\n"
      "  tvrtool view 5000000000_src_1920x1080.nv12\n"
      "  tvrtool compare device-dumps host-dumps\n"
      "  tvrtool help view\n"
      "\n"
      "Exit status: 0 on success, 1 when a command failed, 2 on wrong usage.\n",
      to);
}

int usageError(const std::string& message) { return tvrtool::usageError("tvrtool", message); }

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) return usageError("no command given");

  const std::string& first = args[0];
  if (first == "-h" || first == "--help") {
    printHelp(stdout);
    return tvrtool::kExitOk;
  }
  if (first == "--version") {
    std::printf("tvrtool %s\n", TVRTOOL_VERSION);
    return tvrtool::kExitOk;
  }
  if (first == "help") {
    if (args.size() == 1) {
      printHelp(stdout);
      return tvrtool::kExitOk;
    }
    const Subcommand* command = find(args[1]);
    if (command == nullptr) return usageError("no such command '" + args[1] + "'");
    command->printHelp(stdout);
    return tvrtool::kExitOk;
  }
  const Subcommand* command = find(first);
  if (command == nullptr) {
    return usageError(first[0] == '-' ? "unknown option '" + first + "'" : "no such command '" + first + "'");
  }
  return command->run(std::vector<std::string>(args.begin() + 1, args.end()));
}
