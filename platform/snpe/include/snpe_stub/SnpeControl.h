// Test control of the host stand-in of the NN runtime (libSNPE.so built from platform/snpe).
// Tests script the stand-in through these functions: which runtimes the device has, which call
// fails, the last-error text, how long an execution takes. They read back the journal of calls with
// their arguments, the objects still alive, the settings a network was built with and how many
// executions ran at once. The functions exist only in the stand-in; a build against the vendor SDK
// has no such header.
//
// Every function is thread-safe and may be called while the runtime is in use on other threads.
//
// Handles in the journal. Every object the stand-in creates gets a name made of its kind and a
// sequence number, "container#3", "runtimelist#1", "snpe#2" (see kindName); numbers count from 1
// per kind for the life of the process and are never reused, reset() included. A null handle is
// written "null"; a pointer that is not a live object of the stand-in is written as its address
// followed by "?", e.g. "0x5610f2a0?". Other arguments: numbers and enumerations as decimal
// integers, strings in double quotes (null as null), caller memory as its address ("0x7ffd...").
// Arguments are separated by ", ".
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "DlSystem/DlEnums.h"

namespace snpe_stub {

// One call of the runtime's C interface, as the stand-in saw it.
struct Call {
  std::string name;  // C function name, e.g. "Snpe_Util_InitializeLogging"
  std::string args;  // arguments, comma separated, in declaration order
};

// Forgets failure scripts, the journal and the calling thread's last error text; makes only the
// CPU available again, removes the execution delay, zeroes the concurrency counters and turns the
// journal back on. What the runtime was told through Snpe_Util_InitializeLogging stays (the real
// runtime keeps it for the life of the process too), and so do the live objects and their counts.
void reset();

// The next `times` calls of the named function fail as the real runtime fails (null handle, error
// code or zero, as the function reports errors). A negative `times` makes every call fail, zero
// removes the script. A failed call journals itself like any other and sets the last-error text to
// "<name>: scripted failure", or to `lastError` when given. A failed Delete leaves its object alive.
void failCall(const std::string& name, int times = 1);
void failCall(const std::string& name, int times, const std::string& lastError);

// Sets the calling thread's last-error text, as Snpe_ErrorCode_GetLastErrorString returns it.
// (Like the runtime, the stand-in keeps one last error per thread; each failed call replaces it.)
void setLastError(const std::string& text);

// Every call made since the last reset(), in order (Snpe_ErrorCode_GetLastErrorString included).
std::vector<Call> journal();

// Stops (or resumes) journalling, e.g. for a benchmark of a million executions.
void setJournaling(bool on);

// Level given to the first successful Snpe_Util_InitializeLogging, or -1 before it.
int loggingLevel();

// Calls of Snpe_Util_InitializeLogging in this process, failed ones included; reset() keeps it.
int loggingCalls();

// --- Runtimes ---------------------------------------------------------------------------------

// Whether the device has `runtime`. Only the CPU is available at first, as on a workstation.
// Snpe_Util_IsRuntimeAvailableCheckOption answers from this (whatever the check option), and a
// network is built for the first available runtime of its builder's list.
void setRuntimeAvailable(Snpe_Runtime_t runtime, bool available);

// --- Objects ----------------------------------------------------------------------------------

enum class Kind {
  Container,       // Snpe_DlContainer_Open, _OpenBuffer
  RuntimeList,     // Snpe_RuntimeList_Create
  StringList,      // Snpe_StringList_Create, and the name lists networks and maps hand out
  PlatformConfig,  // Snpe_PlatformConfig_Create
  Builder,         // Snpe_SNPEBuilder_Create
  Network,         // Snpe_SNPEBuilder_Build
  UserBuffer,      // Snpe_Util_CreateUserBuffer
  Encoding,        // Snpe_UserBufferEncodingFloat_Create
  UserBufferMap,   // Snpe_UserBufferMap_Create
  TensorShape,     // Snpe_TensorShape_CreateDimsSize, Snpe_SNPE_GetInputDimensions
};

// "container", "runtimelist", "stringlist", "platformconfig", "builder", "snpe", "userbuffer",
// "encoding", "userbuffermap", "tensorshape": the prefix of the kind's handle names.
const char* kindName(Kind kind);

// Objects of `kind` alive now (created and not yet deleted), across resets.
int liveCount(Kind kind);

// Objects of every kind alive now.
int liveCount();

// The handle's name as the journal writes it ("builder#2", "null", "0x...?").
std::string handleName(const void* handle);

// --- Networks ---------------------------------------------------------------------------------

// What a network was built with: its builder's settings at the time of Snpe_SNPEBuilder_Build.
struct NetworkSettings {
  std::string modelVersion;
  Snpe_Runtime_t runtime = SNPE_RUNTIME_UNSET;  // the runtime it runs on
  std::vector<Snpe_Runtime_t> runtimeOrder;     // as given (empty: never set, the CPU is used)
  Snpe_PerformanceProfile_t performanceProfile = SNPE_PERFORMANCE_PROFILE_DEFAULT;
  Snpe_ProfilingLevel_t profilingLevel = SNPE_PROFILING_LEVEL_OFF;
  Snpe_ExecutionPriorityHint_t executionPriority = SNPE_EXECUTION_PRIORITY_NORMAL;
  bool debugMode = false;
  bool useUserSuppliedBuffers = false;
  std::vector<std::string> outputLayers;     // as given (empty: the model's outputs)
  std::vector<std::string> platformOptions;  // every option the platform configuration took
};

// The settings of a live network; nothing when `network` is not one.
std::optional<NetworkSettings> networkSettings(const void* network);

// --- Execution --------------------------------------------------------------------------------

// Every Snpe_SNPE_ExecuteUserBuffers that gets past its checks then waits this long before it
// computes (default zero), so that executions on several threads overlap in time.
void setExecuteDelay(std::chrono::microseconds delay);

// The most executions that were in progress at the same time since the last reset(): of any
// networks, of one network (the largest over all networks), and of the given live network (-1 when
// it is not one). The runtime does not serialise executions of one network; its user must.
int maxConcurrentExecutions();
int maxConcurrentExecutionsOfOneNetwork();
int maxConcurrentExecutions(const void* network);

}  // namespace snpe_stub
