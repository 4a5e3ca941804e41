// The installed trace marker sink (TivoraTraceSink.h), as the marker writer reads it.
#pragma once

#include <atomic>

#include "TivoraTraceSink.h"

namespace tivora {

extern std::atomic<const TraceMarkerSink*> gTraceMarkerSink;

// The sink to hand a marker to, or null for the file. The common case, no sink, is one relaxed
// load; a sink found is made visible with its fields by the fence, which pairs with the release
// store of setTraceMarkerSink.
inline const TraceMarkerSink* installedTraceMarkerSink() {
  const TraceMarkerSink* sink = gTraceMarkerSink.load(std::memory_order_relaxed);
  if (sink != nullptr) std::atomic_thread_fence(std::memory_order_acquire);
  return sink;
}

}  // namespace tivora
