// Running the tvrtool program itself from a test, as a camera engineer runs it: its output and
// errors caught, its PNGs read back with libpng.
//
// A program using this is run as `PROGRAM [gtest flags] COMMAND...`, COMMAND being what runs
// tvrtool (with the emulator first in a cross build); toolTestMain takes it from the command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tvrtool::test {

struct Result {
  int status = -1;  // the exit status; -1 when the program did not exit normally
  std::string out, err;
};

// Runs tvrtool with `args` in the current directory; the output is caught in files under `dir`.
Result runTool(const std::vector<std::string>& args, const std::filesystem::path& dir);

std::string slurp(const std::filesystem::path& path);

struct Png {
  uint32_t width = 0, height = 0, channels = 0;
  std::vector<uint8_t> pixels;
};

// Decodes a PNG in memory, keeping gray as gray.
bool decodePng(const std::string& bytes, Png& png);

// An empty directory for the running case: <current directory>/<group>/<suite>.<case>.
std::filesystem::path freshCaseDirectory(const std::string& group);

// gtest's main, which also takes the tool's command.
int toolTestMain(int argc, char** argv);

}  // namespace tvrtool::test
