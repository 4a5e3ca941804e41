#include "TraceMarkerSink.h"

namespace tivora {

std::atomic<const TraceMarkerSink*> gTraceMarkerSink{nullptr};

void setTraceMarkerSink(const TraceMarkerSink* sink) { gTraceMarkerSink.store(sink, std::memory_order_release); }

}  // namespace tivora
