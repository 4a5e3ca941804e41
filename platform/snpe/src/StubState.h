// Process-wide state of the stand-in, shared by every function of the C interface: failure
// scripts, the call journal, the last error, the registry of live objects (which turns handles
// back into objects and names them), runtime availability and the execution counters.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>

#include "DlSystem/DlEnums.h"
#include "DlSystem/DlError.h"
#include "snpe_stub/SnpeControl.h"
#include "stub_common/JournalText.h"

namespace snpe_stub::detail {

using snpe_stub::Kind;
using snpe_stub::NetworkSettings;

// --- Journal and failure scripts ---------------------------------------------------------------

bool journaling();

// Journals the call and consumes one scripted failure; true when this call must fail, and then the
// last error is already set.
bool enter(const char* name, std::string args);

void setLastError(std::string text);
const std::string& lastError();

// Sets the last error to "<function>: <why>" and returns `result`, for one-line failure paths.
template <typename R>
R fail(const char* function, const std::string& why, R result) {
  setLastError(std::string(function) + ": " + why);
  return result;
}

// Caller memory in the journal: its address, never a handle name.
struct Memory {
  const void* address;
};

inline std::string arg(const void* handle) { return handleName(handle); }
inline std::string arg(const char* text) { return text ? '"' + std::string(text) + '"' : "null"; }
inline std::string arg(Memory memory) { return stub_common::addressText(memory.address); }
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>>>
std::string arg(T value) {
  return stub_common::numberText(value);
}

// enter() with the arguments rendered as the journal writes them (only while journalling).
template <typename... Args>
bool enter(const char* name, const Args&... args) {
  std::string text;
  if constexpr (sizeof...(Args) > 0) {
    if (journaling()) {
      const char* separator = "";
      ((text += separator, text += arg(args), separator = ", "), ...);
    }
  }
  return enter(name, std::move(text));
}

// --- Objects -----------------------------------------------------------------------------------

// Every object a handle stands for derives from Object; each kind names its Kind as kKind.
struct Object {
  virtual ~Object() = default;
};

// Registers `object` and returns its handle.
void* adopt(std::unique_ptr<Object> object, Kind kind);

// The object behind `handle` when it is a live object of `kind`, else null.
Object* lookup(const void* handle, Kind kind);

template <typename T>
T* find(const void* handle) {
  return static_cast<T*>(lookup(handle, T::kKind));
}

template <typename T>
void* adopt(std::unique_ptr<T> object) {
  return adopt(std::unique_ptr<Object>(std::move(object)), T::kKind);
}

// Unregisters and destroys the object; false when `handle` is not a live object of `kind`.
bool release(const void* handle, Kind kind);

// The usual Delete: journals the call, honours a failure script, rejects null and unknown handles.
Snpe_ErrorCode_t deleteObject(const char* function, const void* handle, Kind kind);

// --- Runtimes and execution --------------------------------------------------------------------

bool runtimeAvailable(Snpe_Runtime_t runtime);

std::chrono::microseconds executeDelay();

// Brackets one execution of `network` for the concurrency counters.
void executionBegins(const void* network);
void executionEnds(const void* network);

// Drops a deleted network's counters.
void forgetNetwork(const void* network);

}  // namespace snpe_stub::detail
