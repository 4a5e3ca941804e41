// A host's own receiver of the library's trace markers, in place of the kernel's trace_marker file.
//
// A host that wants to know WHEN each marker was written (a workstation host, a test bench) cannot
// learn it from the file: whoever reads a FIFO or a trace buffer later sees when it read, not when
// the library wrote. A sink is called on the writing thread, at the moment of writing, so it can
// read its own clock and thread id:
//
//   void onMarker(void* context, const char* marker, size_t length) { ... }
//   static const tivora::TraceMarkerSink sink = {onMarker, &myRecorder};
//   tivora::setTraceMarkerSink(&sink);   // from now on markers go to onMarker
//   ...
//   tivora::setTraceMarkerSink(nullptr); // and to the file again
//
// Contract:
// - Markers are still written only while tracing is on ("TivoraTrace" in the logger's
//   configuration, see ScopedTrace.h). With a sink installed, each of them is handed to the sink
//   instead of the file: the text exactly as the file would get it ("B|<pid>|<class>::<function>()|0",
//   at most 255 bytes, NUL-terminated at `length`), and no marker file is opened or written.
// - Without a sink the library writes to trace_marker exactly as before; the sink costs it one
//   relaxed atomic load per marker written, and nothing at all while tracing is off.
// - The sink runs on whatever thread wrote the marker, possibly several at once, and must not
//   call back into the library's tracing. It should be quick: it runs inside the traced call.
// - Installing and removing are atomic: every marker goes either to the old receiver or the new
//   one, whole. Removal does not wait for a marker that another thread is handing over at that
//   moment, so the record and its context must stay valid until no thread can be inside the
//   library's tracing (after the processing's last lifecycle call), or for the process's life.
#pragma once

#include <stddef.h>

#include "tvr_export.h"

namespace tivora {

struct TraceMarkerSink {
  void (*write)(void* context, const char* marker, size_t length);
  void* context;
};

// Installs `sink` (it must outlive its installation, see above), or removes the one installed
// when null.
TVR_EXPORT void setTraceMarkerSink(const TraceMarkerSink* sink);

}  // namespace tivora
