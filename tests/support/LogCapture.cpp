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

extern "C" __attribute__((visibility("default"))) int __android_log_print(int prio, const char* tag, const char* fmt,
                                                                          ...) {
  va_list args;
  va_start(args, fmt);
  va_list length_args;
  va_copy(length_args, args);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int length = vsnprintf(nullptr, 0, fmt, length_args);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  if (length > 0) vsnprintf(text.data(), text.size() + 1, fmt, args);
#pragma GCC diagnostic pop
  va_end(length_args);
  va_end(args);

  std::lock_guard<std::mutex> guard(tivora::test::gLock);
  tivora::test::store().push_back(tivora::test::LogRecord{prio, tag != nullptr ? tag : "", std::move(text)});
  return 1;
}
