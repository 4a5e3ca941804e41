#include "ToolProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace tvrtool::test {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> gTool;

}  // namespace

std::string slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool decodePng(const std::string& bytes, Png& png) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) return false;
  png.channels = (image.format & PNG_FORMAT_FLAG_COLOR) != 0 ? 3 : 1;
  image.format = png.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
  png.width = image.width;
  png.height = image.height;
  png.pixels.resize(static_cast<size_t>(png.width) * png.height * png.channels);
  const bool ok = png_image_finish_read(&image, nullptr, png.pixels.data(), 0, nullptr) != 0;
  png_image_free(&image);
  return ok;
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
    const int outFd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int errFd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(outFd, 1);
    dup2(errFd, 2);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  Result result;
  int status = 0;
  if (child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status)) result.status = WEXITSTATUS(status);
  result.out = slurp(out);
  result.err = slurp(err);
  fs::remove(out);
  fs::remove(err);
  return result;
}

fs::path freshCaseDirectory(const std::string& group) {
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  const fs::path dir = fs::current_path() / group / (std::string(test->test_suite_name()) + "." + test->name());
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir;
}

int toolTestMain(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  gTool.assign(argv + 1, argv + argc);
  if (gTool.empty()) {
    std::fprintf(stderr, "usage: %s [gtest flags] COMMAND...\n", argv[0]);
    return 2;
  }
  return RUN_ALL_TESTS();
}

}  // namespace tvrtool::test
