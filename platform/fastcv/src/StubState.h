// The stand-in's process-wide state shared by every function: the journal of calls.
#pragma once

#include <string>
#include <type_traits>

#include "stub_common/JournalText.h"

namespace fastcv_stub::detail {

inline std::string arg(const void* pointer) { return stub_common::addressText(pointer); }
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>>>
std::string arg(T value) {
  return stub_common::numberText(value);
}

// "a, b, c" from the arguments of a call.
template <typename First, typename... Rest>
std::string args(First first, Rest... rest) {
  std::string text = arg(first);
  ((text += ", ", text += arg(rest)), ...);
  return text;
}

void record(const char* name, std::string args);
bool journaling();

// Journals the call with its arguments, unless journaling is off.
template <typename... Args>
void journalCall(const char* name, Args... values) {
  if (journaling()) record(name, args(values...));
}

// Consumes one scripted fcvMemAlloc failure; true when this call must fail.
bool memAllocMustFail();

}  // namespace fastcv_stub::detail
