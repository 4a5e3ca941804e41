// What tvrtool's tests share: files of given bytes, and the tvrtool program itself run as a camera
// engineer runs it, its output and errors caught.
//
// The test program is run as `tvrtool_tests [gtest flags] COMMAND...`, COMMAND being what runs
// tvrtool (with the emulator first in a cross build); its main (ToolProcess.cpp) takes it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "DeviceFiles.h"

namespace tvrtool::test {

using tivora::test::readFile;

inline bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

struct Result {
  int status = -1;  // the exit status; -1 when the program did not exit normally
  std::string out, err;
  // The lines tvrtool itself wrote on standard error: not the library's log records ("TVR ...")
  // nor the progress lines.
  std::vector<std::string> toolErrors() const;
};

// The lines of `text`, without their line ends.
std::vector<std::string> lines(const std::string& text);

// Runs tvrtool with `args`; the output is caught in files under `dir`.
Result runTool(const std::vector<std::string>& args, const std::filesystem::path& dir);

// A case with a folder of its own, emptied first: <current directory>/<suite>.<case>.
class CaseFolderTest : public ::testing::Test {
 protected:
  CaseFolderTest();
  std::string path(const std::string& name) const { return (dir / name).string(); }
  // Writes `bytes` to the file `name` in the folder (creating its folders) and returns its path.
  std::string write(const std::string& name, const std::string& bytes);
  Result tool(const std::vector<std::string>& args) const { return runTool(args, dir); }

  std::filesystem::path dir;
};

}  // namespace tvrtool::test
