// The words the logger's configuration file sets, read from any stream. TivoraLogger::setup reads
// the file once per process; this reader is separate so that tests and the fuzz target can drive
// the parsing once per input.
#pragma once

#include <istream>
#include <string>

namespace tivora::detail {

// The value words, at their defaults until a line sets them.
struct LoggerConfigWords {
  std::string level = "I";
  std::string trace = "false";
  std::string snpeLevel = "E";
};

// The keys, without their "=".
struct LoggerConfigKeys {
  std::string level;
  std::string trace;
  std::string snpeLevel;
};

// Reads every line of `in` into `words`: blanks removed, keys tried in the order level, trace,
// runtime level, a line sets at most one word, the last line wins.
void readLoggerConfigWords(std::istream& in, const LoggerConfigKeys& keys, LoggerConfigWords& words);

}  // namespace tivora::detail
