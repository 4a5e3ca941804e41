#include "log/LoggerConfigWords.h"

#include <algorithm>

namespace tivora::detail {

namespace {

// The value after "key=" when the line holds it; `length` 0 takes the rest of the line.
bool valueOf(const std::string& line, const std::string& keyWithEquals, std::string::size_type length,
             std::string& value) {
  const auto position = line.find(keyWithEquals);
  if (position == std::string::npos) return false;
  value = line.substr(position + keyWithEquals.size(), length == 0 ? std::string::npos : length);
  return true;
}

}  // namespace

void readLoggerConfigWords(std::istream& in, const LoggerConfigKeys& keys, LoggerConfigWords& words) {
  const std::string levelKey = keys.level + "=";
  const std::string traceKey = keys.trace + "=";
  const std::string snpeLevelKey = keys.snpeLevel + "=";
  std::string line;
  while (std::getline(in, line)) {
    line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
    if (valueOf(line, levelKey, 1, words.level)) continue;
    if (valueOf(line, traceKey, 0, words.trace)) continue;
    valueOf(line, snpeLevelKey, 1, words.snpeLevel);
  }
}

}  // namespace tivora::detail
