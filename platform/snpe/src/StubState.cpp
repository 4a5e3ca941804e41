#include "StubState.h"

#include <map>
#include <mutex>
#include <utility>

#include "DlSystem/DlError.h"
#include "snpe_stub/SnpeControl.h"

namespace snpe_stub {
namespace {

struct State {
  std::mutex lock;
  std::map<std::string, int> failures;  // name -> remaining failures, negative = always
  std::vector<Call> journal;
};

State& state() {
  static State* s = new State;  // never destroyed: calls may arrive from static destructors
  return *s;
}

thread_local std::string tLastError;

}  // namespace

void reset() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.failures.clear();
  s.journal.clear();
  tLastError.clear();
}

void failCall(const std::string& name, int times) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  if (times == 0) {
    s.failures.erase(name);
  } else {
    s.failures[name] = times;
  }
}

std::vector<Call> journal() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  return s.journal;
}

namespace detail {

bool enter(const char* name, std::string args) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.journal.push_back(Call{name, std::move(args)});
  auto it = s.failures.find(name);
  if (it == s.failures.end()) return false;
  if (it->second > 0 && --it->second == 0) s.failures.erase(it);
  return true;
}

void setLastError(std::string text) { tLastError = std::move(text); }

}  // namespace detail
}  // namespace snpe_stub

extern "C" const char* Snpe_ErrorCode_GetLastErrorString(void) { return snpe_stub::tLastError.c_str(); }
