// What `tvrtool run --trace` records, and how it becomes Chrome trace-event JSON, which Perfetto's
// viewer (ui.perfetto.dev) and chrome://tracing open.
//
// Events are plain records of a fixed size, so that recording them while the frames run
// allocates nothing; names longer than the record holds are cut (a marker's begin and end alike).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tvrtool {

struct TraceEvent {
  static constexpr size_t kNameSize = 72;

  char phase;            // 'B' begin, 'E' end, 'X' a slice with its duration, 'C' a counter value,
                         // 'M' the name of the thread `tid`
  int64_t pid, tid;      // the writing process and thread
  int64_t timeNs;        // CLOCK_MONOTONIC
  int64_t durationNs;    // 'X' only
  double value;          // 'C' only
  char name[kNameSize];  // NUL-terminated

  void setName(std::string_view text);
};

// Reads one library marker, "B|<pid>|<name>|0" or "E|...": the name may hold anything, '|'
// included. False for anything else.
bool readMarker(std::string_view marker, char& phase, int64_t& pid, std::string_view& name);

// {"traceEvents":[...],"displayTimeUnit":"ms"}: the process named `processName`, each thread
// named by its 'M' event, times in µs since `originNs`, a counter's value under args.ms. Names are
// escaped as JSON strings; bytes outside ASCII become \u00XX, so the output is valid JSON whatever
// the markers held.
std::string toChromeTraceJson(const TraceEvent* events, size_t count, int64_t pid, const std::string& processName,
                              int64_t originNs);

}  // namespace tvrtool
