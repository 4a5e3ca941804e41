#include <atomic>
#include <string>

#include "SNPE/SNPEUtil.h"
#include "StubState.h"
#include "snpe_stub/SnpeControl.h"

namespace {
std::atomic<int> gLoggingLevel{-1};
std::atomic<int> gLoggingCalls{0};
}  // namespace

int snpe_stub::loggingLevel() { return gLoggingLevel.load(); }
int snpe_stub::loggingCalls() { return gLoggingCalls.load(); }

extern "C" int Snpe_Util_InitializeLogging(Snpe_LogLevel_t level) {
  ++gLoggingCalls;
  if (snpe_stub::detail::enter("Snpe_Util_InitializeLogging", std::to_string(static_cast<int>(level)))) {
    snpe_stub::detail::setLastError("Snpe_Util_InitializeLogging: scripted failure");
    return 0;
  }
  // Like the runtime, only the first successful call sets the level; later ones change nothing.
  int unset = -1;
  gLoggingLevel.compare_exchange_strong(unset, static_cast<int>(level));
  return 1;
}
