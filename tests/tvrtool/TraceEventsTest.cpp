// The library's trace markers as they arrive through the FIFO, turned into Chrome trace events.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "TraceEvents.h"

namespace {

using tvrtool::parseMarkers;
using tvrtool::TraceEvent;

std::string describe(const std::vector<TraceEvent>& events) {
  std::string text;
  for (const TraceEvent& event : events) {
    text += std::string(1, event.phase) + " " + std::to_string(event.pid) + " " + event.name + " @" +
            std::to_string(event.timeNs) + "\n";
  }
  return text;
}

TEST(TraceEventsTest, MarkersTakeTheTimeOfTheReadTheyBeganInAndNamesMayHoldBars) {
  // Three reads; the third apply marker was cut between the second and third read.
  const std::string text = "B|42|P::setup()|0E|42|P::setup()|0B|42|a|b()|0E|42|a|b()|0";
  const auto parsed = parseMarkers(text, {{0, 1000}, {34, 2000}, {text.size() - 5, 3000}});
  EXPECT_EQ(parsed.rejected, 0u);
  EXPECT_EQ(describe(parsed.events), "B 42 P::setup() @1000\nE 42 P::setup() @1000\nB 42 a|b() @2000\nE 42 a|b() @2000\n");
}

TEST(TraceEventsTest, TornAndGarbledMarkersAreCountedAndLeftOut) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"xyzB|1|a()|0E|1|a()|0", "E 1 a() @0\n"},  // garbage glued to a marker
      {"B|1|a()|0E|1|a(", "B 1 a() @0\n"},         // torn at the end
      {"B||a()|0B|1x|a()|0B|1|0", ""},             // no pid, a bad pid, no name
      {"X|1|a()|0", ""},                           // an unknown phase
      {"B|123456789012|a()|0", ""},                // a pid too long to be one
  };
  for (const auto& [text, events] : cases) {
    const auto parsed = parseMarkers(text, {{0, 0}});
    EXPECT_EQ(describe(parsed.events), events) << text;
    EXPECT_GE(parsed.rejected, 1u) << text;
  }
}

TEST(TraceEventsTest, JsonIsValidAndCarriesEveryEventExactly) {
  const std::vector<TraceEvent> events = {{'B', 42, "P::apply()", 1001234567},
                                          {'E', 42, "say \"hi\" \\ \n\t\x01 caf\xc3\xa9", 1000000500},
                                          {'E', 42, "P::apply()", 999999500}};
  // A byte outside ASCII comes back as the code point of its value (\u00XX), never as bad UTF-8.
  const nlohmann::json expected = nlohmann::json::parse(R"json({
      "displayTimeUnit": "ms", "traceEvents": [
        {"name": "P::apply()", "ph": "B", "ts": 1234.567, "pid": 42, "tid": 42},
        {"name": "say \"hi\" \\ \n\t\u0001 caf\u00c3\u00a9", "ph": "E", "ts": 0.5, "pid": 42, "tid": 42},
        {"name": "P::apply()", "ph": "E", "ts": -0.5, "pid": 42, "tid": 42}]})json");
  EXPECT_EQ(nlohmann::json::parse(tvrtool::toChromeTraceJson(events, 1000000000)), expected);
  EXPECT_EQ(nlohmann::json::parse(tvrtool::toChromeTraceJson({}, 0)).at("traceEvents").size(), 0u);
}

}  // namespace
