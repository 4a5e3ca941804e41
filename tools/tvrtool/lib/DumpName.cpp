#include "DumpName.h"

#include <optional>

namespace tvrtool {

namespace {

bool allDigits(const std::string& text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

// A dimension as the library prints it with "%d": at most 2^31 - 1.
std::optional<uint32_t> dimension(const std::string& text) {
  if (!allDigits(text) || text.size() > 10) return std::nullopt;
  const unsigned long long value = std::stoull(text);
  if (value > 0x7fffffffull) return std::nullopt;
  return static_cast<uint32_t>(value);
}

}  // namespace

FileName parseFileName(const std::string& path) {
  FileName result;
  const std::string::size_type slash = path.find_last_of('/');
  const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  const std::string::size_type dot = base.find_last_of('.');
  const std::string stem = dot == std::string::npos ? base : base.substr(0, dot);
  if (dot != std::string::npos) result.extension = base.substr(dot + 1);

  const std::string::size_type underscore = stem.find_last_of('_');
  if (underscore == std::string::npos) return result;
  const std::string size = stem.substr(underscore + 1);
  const std::string::size_type x = size.find('x');
  if (x == std::string::npos) return result;
  const auto first = dimension(size.substr(0, x));
  const auto second = dimension(size.substr(x + 1));
  if (!first || !second) return result;

  result.first = *first;
  result.second = *second;
  // A dump's name starts with its time stamp; its own name may be empty or hold '_'.
  const std::string prefix = stem.substr(0, underscore);
  const std::string::size_type stampEnd = prefix.find('_');
  result.kind =
      stampEnd != std::string::npos && allDigits(prefix.substr(0, stampEnd)) ? NameKind::Dump : NameKind::Sized;
  if (result.kind == NameKind::Dump) {
    result.name = prefix.substr(stampEnd + 1);
    result.stamp = stampEnd <= 19 ? std::stoull(prefix.substr(0, stampEnd)) : 0;
  }
  return result;
}

}  // namespace tvrtool
