// Test control of the host stand-in of the NN runtime (libSNPE.so built from platform/snpe).
// Tests script the stand-in through these functions: make a named call fail, read the journal of
// calls with their arguments, read what the runtime was told. They exist only in the stand-in; a
// build against the vendor SDK has no such header.
#pragma once

#include <string>
#include <vector>

namespace snpe_stub {

// One call of the runtime's C interface, as the stand-in saw it.
struct Call {
  std::string name;  // C function name, e.g. "Snpe_Util_InitializeLogging"
  std::string args;  // arguments, comma separated, in declaration order
};

// Forgets failure scripts, the journal and the last error text. What the runtime was told through
// Snpe_Util_InitializeLogging stays: the real runtime keeps it for the life of the process too.
void reset();

// The next `times` calls of the named function fail as the real runtime fails (null handle, error
// code or zero, as the function reports errors). A negative `times` makes every call fail.
void failCall(const std::string& name, int times = 1);

// Every call made since the last reset(), in order.
std::vector<Call> journal();

// Level given to the first successful Snpe_Util_InitializeLogging, or -1 before it.
int loggingLevel();

// Calls of Snpe_Util_InitializeLogging in this process, failed ones included; reset() keeps it.
int loggingCalls();

}  // namespace snpe_stub
