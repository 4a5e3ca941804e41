#include "StubState.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include "fastcv_stub/FastcvControl.h"

namespace fastcv_stub {
namespace {

struct State {
  std::mutex lock;
  std::vector<Call> journal;
  int memAllocFailures = 0;  // negative: every call
};

State& state() {
  static auto* s = new State;  // never destroyed: calls may come from static destructors
  return *s;
}

// Outside the lock: a call that is not journalled takes no lock and builds no text.
std::atomic<bool> gJournaling{true};

}  // namespace

void setJournaling(bool on) { gJournaling.store(on, std::memory_order_relaxed); }

bool detail::journaling() { return gJournaling.load(std::memory_order_relaxed); }

std::vector<Call> journal() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  return s.journal;
}

void reset() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.journal.clear();
  s.memAllocFailures = 0;
}

void failMemAlloc(int times) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.memAllocFailures = times;
}

void detail::record(const char* name, std::string args) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.journal.push_back(Call{name, std::move(args)});
}

bool detail::memAllocMustFail() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  if (s.memAllocFailures == 0) return false;
  if (s.memAllocFailures > 0) --s.memAllocFailures;
  return true;
}

}  // namespace fastcv_stub
