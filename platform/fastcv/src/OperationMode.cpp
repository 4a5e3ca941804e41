#include <atomic>
#include <mutex>

#include "StubState.h"
#include "fastcv.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

std::atomic<int> gResult{0};

struct Calls {
  std::mutex lock;
  std::vector<int> modes;
};

Calls& calls() {
  static auto* c = new Calls;  // never destroyed: calls may come from static destructors
  return *c;
}

}  // namespace

void fastcv_stub::setOperationModeResult(int result) { gResult = result; }

std::vector<int> fastcv_stub::operationModeCalls() {
  std::lock_guard<std::mutex> guard(calls().lock);
  return calls().modes;
}

extern "C" int fcvSetOperationMode(fcvOperationMode mode) {
  fastcv_stub::detail::journalCall("fcvSetOperationMode", mode);
  {
    std::lock_guard<std::mutex> guard(calls().lock);
    calls().modes.push_back(static_cast<int>(mode));
  }
  return gResult.load();
}
