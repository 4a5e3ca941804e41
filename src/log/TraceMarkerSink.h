// The installed trace marker sink (TivoraTraceSink.h), as the marker writer reads it.
#pragma once

#include <atomic>

#include "TivoraTraceSink.h"

namespace tivora {

extern std::atomic<const TraceMarkerSink*> gTraceMarkerSink;

// The sink to hand a marker to, or null for the file. The common case, no sink, is one relaxed
// load; only when there is one, an acquire load (pairing with setTraceMarkerSink's release store)
// takes it with its fields, or null should it have gone in between.
inline const TraceMarkerSink* installedTraceMarkerSink() {
  if (gTraceMarkerSink.load(std::memory_order_relaxed) == nullptr) return nullptr;
  return gTraceMarkerSink.load(std::memory_order_acquire);
}

}  // namespace tivora
