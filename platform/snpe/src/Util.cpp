#include <atomic>

#include "DlSystem/DlError.h"
#include "SNPE/SNPEUtil.h"
#include "StubState.h"

using namespace snpe_stub::detail;

namespace {
std::atomic<int> gLoggingLevel{-1};
std::atomic<int> gLoggingCalls{0};
}  // namespace

int snpe_stub::loggingLevel() { return gLoggingLevel.load(); }
int snpe_stub::loggingCalls() { return gLoggingCalls.load(); }

extern "C" int Snpe_Util_InitializeLogging(Snpe_LogLevel_t level) {
  ++gLoggingCalls;
  if (enter("Snpe_Util_InitializeLogging", level)) return 0;
  // Like the runtime, only the first successful call sets the level; later ones change nothing.
  int unset = -1;
  gLoggingLevel.compare_exchange_strong(unset, static_cast<int>(level));
  return 1;
}

// The option only says how thoroughly the runtime looks; the stand-in knows the answer outright.
extern "C" int Snpe_Util_IsRuntimeAvailableCheckOption(Snpe_Runtime_t runtime, Snpe_RuntimeCheckOption_t option) {
  static constexpr const char* kName = "Snpe_Util_IsRuntimeAvailableCheckOption";
  if (enter(kName, runtime, option)) return 0;
  // Like the runtime, an unavailable answer leaves the reason as the last error.
  if (!runtimeAvailable(runtime))
    return fail(kName, "runtime " + std::to_string(static_cast<int>(runtime)) + " is not available", 0);
  return 1;
}

// A scripted failure answers "" (the function has no other way to fail).
extern "C" const char* Snpe_ErrorCode_GetLastErrorString(void) {
  if (enter("Snpe_ErrorCode_GetLastErrorString")) return "";
  return lastError().c_str();
}
