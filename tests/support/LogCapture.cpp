#include "LogCapture.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace tivora::test {
namespace {

std::mutex gLock;
std::vector<LogRecord>& store() {
  static auto* records = new std::vector<LogRecord>;  // outlives every static destructor
  return *records;
}

}  // namespace

LogCapture::LogCapture() {
  std::lock_guard<std::mutex> guard(gLock);
  store().clear();
}

std::vector<LogRecord> LogCapture::records() const {
  std::lock_guard<std::mutex> guard(gLock);
  return store();
}

std::vector<std::string> LogCapture::texts() const {
  std::vector<std::string> result;
  for (const LogRecord& record : records()) result.push_back(record.text);
  return result;
}

}  // namespace tivora::test

// The library's records are at most a prefix and 1023 characters of message.
extern "C" __attribute__((visibility("default"))) int __android_log_print(int prio, const char* tag, const char* fmt,
                                                                          ...) {
  char text[4096];
  va_list args;
  va_start(args, fmt);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  if (vsnprintf(text, sizeof text, fmt, args) < 0) text[0] = '\0';
#pragma GCC diagnostic pop
  va_end(args);
  std::lock_guard<std::mutex> guard(tivora::test::gLock);
  tivora::test::store().push_back(tivora::test::LogRecord{prio, tag != nullptr ? tag : "", text});
  return 1;
}
