// tivora::readFromFile on arbitrary files: the input is the file's content; its first byte also
// picks, now and then, a path that is no regular file (a directory, a missing file, a kernel file
// whose size is not what a seek reports).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "DeviceDirs.h"
#include "TivoraUtil.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string dir = tivora::fuzz::scratchDir("read_file");
  const std::string file = dir + "/input.bin";
  tivora::fuzz::writeFileOrDie(file, data, size);

  std::string path = file;
  const uint8_t pick = size > 0 ? data[0] : 0;
  if (pick == 0xf0) path = dir;                    // a directory
  if (pick == 0xf1) path = dir + "/missing.bin";   // nothing there
  if (pick == 0xf2) path = "/proc/self/status";    // reads more than a seek to its end reports
  if (pick == 0xf3) path = file + "/below_a_file";  // a path under a regular file

  unsigned char* content = nullptr;
  int length = -1;
  const tvr_err_t status = tivora::readFromFile(path.c_str(), &content, &length);
  if (path == file) {
    require(status == TVR_OK && length == static_cast<int>(size) && content != nullptr);
    require(std::memcmp(content, data, size) == 0 && content[size] == 0);
  } else {
    require(status == TVR_OK || status == TVR_ERR_FILE_READ);
    if (status == TVR_OK) require(content != nullptr && length >= 0);
  }
  std::free(content);
  return 0;
}
