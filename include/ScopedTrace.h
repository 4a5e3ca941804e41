// ftrace markers, so that system tracing tools show how long each lifecycle call takes.
//
// Markers are written only when "TivoraTrace" is switched on in the logger's configuration file
// (see TivoraLogger.h). They go to the kernel's "/sys/kernel/tracing/trace_marker", or, when that
// cannot be opened, "/sys/kernel/debug/tracing/trace_marker". The file is opened on the first
// marker and kept open; while neither opens, every marker tries both again and is dropped.
//
//     B|<pid>|<class>::<function>()|0      on entry
//     E|<pid>|<class>::<function>()|0      on exit
//
// A marker is at most 255 bytes. With tracing off a marker costs one test of a bool; a ScopedTrace
// also costs its two name copies. Markers may be written from any thread; nothing is logged about
// tracing, and write errors are ignored.
#pragma once

#include <mutex>
#include <string>

#include "tvr_export.h"

namespace tivora {

// Set once, by the logger's configuration, when tracing is switched on; never cleared.
TVR_EXPORT extern bool gTracingOn;
// Descriptor of the open marker file, -1 while none is open. Guarded by gTraceMarkerLock.
TVR_EXPORT extern int gTraceMarkerFd;
TVR_EXPORT extern std::mutex gTraceMarkerLock;

// Writes the begin marker on construction and the matching end marker on destruction.
class TVR_EXPORT ScopedTrace {
 private:
  std::string mClassName;
  std::string mFunctionName;

 public:
  ScopedTrace(const char* className, const char* functionName);
  ~ScopedTrace();

  ScopedTrace(const ScopedTrace&) = delete;
  ScopedTrace& operator=(const ScopedTrace&) = delete;
};

TVR_EXPORT void ftraceBegin(const char* className, const char* functionName);
TVR_EXPORT void ftraceEnd(const char* className, const char* functionName);

// The marker file's descriptor for a processing's own markers: -1 at once when tracing is off,
// else the file is opened if need be and its descriptor (or still -1) returned.
TVR_EXPORT int getTraceFd();

}  // namespace tivora
