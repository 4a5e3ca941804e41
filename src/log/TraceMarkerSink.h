// The installed trace marker sink (TivoraTraceSink.h), as the marker writer reads it.
#pragma once

#include <atomic>

#include "TivoraTraceSink.h"

namespace tivora {

extern std::atomic<const TraceMarkerSink*> gTraceMarkerSink;

// The sink to hand a marker to, or null for the file. Read only when tracing is on; the acquire
// load pairs with setTraceMarkerSink's release store, so the sink's fields come with it.
inline const TraceMarkerSink* installedTraceMarkerSink() { return gTraceMarkerSink.load(std::memory_order_acquire); }

}  // namespace tivora
