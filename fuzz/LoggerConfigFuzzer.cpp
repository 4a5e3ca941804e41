// The logger's configuration file, one parse per input. The logger itself reads its file once per
// process, so the target drives the reader it uses, with the logger's own keys.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "log/LoggerConfigWords.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::istringstream in(text);
  tivora::detail::LoggerConfigWords words;
  tivora::detail::readLoggerConfigWords(in, {"TivoraLogLevel", "TivoraTrace", "SNPELogLevel"}, words);

  // What any file can do to the words: levels are one character at most, no word keeps a blank
  // or spans lines, and a word whose key never appears keeps its default.
  require(words.level.size() <= 1 && words.snpeLevel.size() <= 1);
  for (const std::string* word : {&words.level, &words.trace, &words.snpeLevel}) {
    require(word->find(' ') == std::string::npos && word->find('\n') == std::string::npos);
  }
  std::string squeezed = text;
  squeezed.erase(std::remove(squeezed.begin(), squeezed.end(), ' '), squeezed.end());
  if (squeezed.find("TivoraLogLevel=") == std::string::npos) require(words.level == "I");
  if (squeezed.find("SNPELogLevel=") == std::string::npos) require(words.snpeLevel == "E");
  return 0;
}
