#include "ToolProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

namespace tvrtool::test {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> gTool;

}  // namespace

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

std::vector<std::string> Result::toolErrors() const {
  std::vector<std::string> own;
  for (const std::string& line : lines(err)) {
    if (line.rfind("TVR ", 0) != 0 && line.rfind("apply: frame", 0) != 0) own.push_back(line);
  }
  return own;
}

Result runTool(const std::vector<std::string>& args, const fs::path& dir) {
  std::vector<std::string> command = gTool;
  command.insert(command.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& arg : command) argv.push_back(arg.data());
  argv.push_back(nullptr);
  const fs::path out = dir / "stdout.txt", err = dir / "stderr.txt";
  const pid_t child = fork();
  if (child == 0) {
    dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644), 1);
    dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644), 2);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  Result result;
  int status = 0;
  if (child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status)) result.status = WEXITSTATUS(status);
  result.out = readFile(out);
  result.err = readFile(err);
  fs::remove(out);
  fs::remove(err);
  return result;
}

CaseFolderTest::CaseFolderTest() {
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(test->test_suite_name()) + "." + test->name();
  for (char& c : name) c = c == '/' ? '_' : c;  // parameterised names hold slashes
  dir = fs::current_path() / name;
  fs::remove_all(dir);
  fs::create_directories(dir);
}

std::string CaseFolderTest::write(const std::string& name, const std::string& bytes) {
  tivora::test::writeFile(path(name), bytes);
  return path(name);
}

}  // namespace tvrtool::test

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  tvrtool::test::gTool.assign(argv + 1, argv + argc);
  if (tvrtool::test::gTool.empty()) {
    std::fprintf(stderr, "usage: %s [gtest flags] COMMAND...\n", argv[0]);
    return 2;
  }
  return RUN_ALL_TESTS();
}
