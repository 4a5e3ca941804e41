// The library's trace markers as Chrome trace-event JSON, which Perfetto's viewer
// (ui.perfetto.dev) and chrome://tracing open.
//
// The library writes "B|<pid>|<Class>::<call>()|0" before and "E|<pid>|<Class>::<call>()|0" after
// each lifecycle call. Markers carry no separator: a marker ends at a "|0" followed by the end of
// the text or by the next "B|" or "E|".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvrtool {

// One read of the marker file: the bytes from `offset` of the whole text on came in at `timeNs`.
struct MarkerRead {
  size_t offset;
  int64_t timeNs;
};

struct TraceEvent {
  char phase;  // 'B' or 'E'
  int64_t pid;
  std::string name;  // the middle field
  int64_t timeNs;    // when the read holding the marker's first byte came in
};

struct ParsedMarkers {
  std::vector<TraceEvent> events;
  size_t rejected = 0;  // torn or garbled markers, left out
};

// Splits the text the marker file received into markers and reads each; `reads` are in ascending
// offsets, the first at 0. A marker that does not read as "B|<digits>|<name>|0" (or E) is counted
// in `rejected`; a name may hold anything, '|' included.
ParsedMarkers parseMarkers(std::string_view text, const std::vector<MarkerRead>& reads);

// {"traceEvents":[{"name":..,"ph":"B","ts":<µs since originNs>,"pid":..,"tid":..},...]}; the
// thread is the process (markers do not name threads). Names are escaped as JSON strings; bytes
// outside ASCII become \u00XX, so the output is valid JSON whatever the markers held.
std::string toChromeTraceJson(const std::vector<TraceEvent>& events, int64_t originNs);

}  // namespace tvrtool
