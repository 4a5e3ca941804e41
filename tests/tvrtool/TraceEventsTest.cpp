// The library's markers as the trace recorder reads them, and the recorded events as Chrome
// trace-event JSON.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "TraceEvents.h"

namespace {

using tvrtool::TraceEvent;

TEST(TraceEventsTest, MarkersReadWithBarsInTheirNamesAndGarbledOnesAreRefused) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"B|42|P::setup()|0", "B 42 P::setup()"},
      {"E|7|a|b()|0", "E 7 a|b()"},  // a name may hold bars
      {"xB|1|a()|0", ""},            // garbage before a marker
      {"B|1|a(", ""},                // torn
      {"B||a()|0", ""},              // no pid
      {"B|1x|a()|0", ""},            // a bad pid
      {"B|1||0", ""},                // no name
      {"X|1|a()|0", ""},             // an unknown phase
      {"B|123456789012|a()|0", ""},  // a pid too long to be one
  };
  for (const auto& [marker, expected] : cases) {
    char phase = 0;
    int64_t pid = 0;
    std::string_view name;
    const bool read = tvrtool::readMarker(marker, phase, pid, name);
    EXPECT_EQ(read ? std::string(1, phase) + " " + std::to_string(pid) + " " + std::string(name) : "", expected) << marker;
  }
}

TEST(TraceEventsTest, JsonNamesProcessAndThreadsAndCarriesEveryEventExactly) {
  TraceEvent events[5] = {{'M', 42, 7, 0, 0, 0, {}}, {'B', 42, 7, 1001234567, 0, 0, {}}, {'X', 42, 7, 1001300000, 2500, 0, {}},
                          {'C', 42, 7, 1001234567, 0, 5.25, {}}, {'E', 42, 7, 999999500, 0, 0, {}}};
  events[0].setName("host");
  events[1].setName("P::apply()");
  events[2].setName(std::string(100, 's'));  // cut to the record's room
  events[3].setName("frame time");
  events[4].setName("say \"hi\" \\ \n\t\x01 caf\xc3\xa9");
  // A byte outside ASCII comes back as the code point of its value (\u00XX), never as bad UTF-8.
  const nlohmann::json expected = nlohmann::json::parse(R"json({
      "displayTimeUnit": "ms", "traceEvents": [
        {"name": "process_name", "ph": "M", "pid": 42, "args": {"name": "tvrtool run: P"}},
        {"name": "thread_name", "ph": "M", "pid": 42, "tid": 7, "args": {"name": "host"}},
        {"name": "P::apply()", "ph": "B", "ts": 1234.567, "pid": 42, "tid": 7},
        {"name": ")json" + std::string(TraceEvent::kNameSize - 1, 's') + R"json(", "ph": "X", "ts": 1300.0, "dur": 2.5, "pid": 42, "tid": 7},
        {"name": "frame time", "ph": "C", "ts": 1234.567, "pid": 42, "tid": 7, "args": {"ms": 5.25}},
        {"name": "say \"hi\" \\ \n\t\u0001 caf\u00c3\u00a9", "ph": "E", "ts": -0.5, "pid": 42, "tid": 7}]})json");
  EXPECT_EQ(nlohmann::json::parse(tvrtool::toChromeTraceJson(events, 5, 42, "tvrtool run: P", 1000000000)), expected);
}

}  // namespace
