// How both host stand-ins write call arguments into their journals: numbers and enumerations in
// decimal, caller memory as its address.
#pragma once

#include <cstdio>
#include <string>
#include <type_traits>

namespace stub_common {

inline std::string addressText(const void* address) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", address);
  return text;
}

template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>>>
std::string numberText(T value) {
  if constexpr (std::is_enum_v<T>) {
    return std::to_string(static_cast<long long>(value));
  } else {
    return std::to_string(value);
  }
}

}  // namespace stub_common
