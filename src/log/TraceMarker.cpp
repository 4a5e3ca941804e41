#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "DevicePaths.h"
#include "ScopedTrace.h"
#include "TraceMarkerSink.h"

namespace tivora {

bool gTracingOn = false;
int gTraceMarkerFd = -1;
std::mutex gTraceMarkerLock;

namespace {

// Opens the marker file unless one is open; tried afresh on every call while none opens.
int markerFdLocked() {
  if (gTraceMarkerFd == -1) {
    gTraceMarkerFd = open(paths::kTraceMarker, O_WRONLY | O_CLOEXEC);
    if (gTraceMarkerFd == -1) gTraceMarkerFd = open(paths::kDebugTraceMarker, O_WRONLY | O_CLOEXEC);
  }
  return gTraceMarkerFd;
}

void writeMarker(bool begin, const char* className, const char* functionName) {
  if (!gTracingOn) return;
  char marker[256];
  int length = begin ? snprintf(marker, sizeof marker, "B|%d|%s::%s()|0", getpid(), className, functionName)
                     : snprintf(marker, sizeof marker, "E|%d|%s::%s()|0", getpid(), className, functionName);
  if (!gTracingOn) return;
  // snprintf reports the untruncated length; only what fits in the buffer is written.
  if (length > static_cast<int>(sizeof marker) - 1) length = static_cast<int>(sizeof marker) - 1;
  if (const TraceMarkerSink* sink = installedTraceMarkerSink()) {
    if (length > 0) sink->write(sink->context, marker, static_cast<size_t>(length));
    return;
  }

  int fd;
  {
    std::lock_guard<std::mutex> guard(gTraceMarkerLock);
    fd = markerFdLocked();
  }
  if (fd == -1 || length <= 0) return;
  const ssize_t written = write(fd, marker, static_cast<size_t>(length));
  (void)written;  // a lost marker is not worth a report
}

}  // namespace

void ftraceBegin(const char* className, const char* functionName) { writeMarker(true, className, functionName); }

void ftraceEnd(const char* className, const char* functionName) { writeMarker(false, className, functionName); }

int getTraceFd() {
  if (!gTracingOn) return -1;
  std::lock_guard<std::mutex> guard(gTraceMarkerLock);
  return markerFdLocked();
}

}  // namespace tivora
