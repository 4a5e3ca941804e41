// The library's trace markers as they arrive through the FIFO, turned into Chrome trace events.
#include <gtest/gtest.h>

#include "MiniJson.h"
#include "TraceEvents.h"

namespace {

using tvrtool::MarkerRead;
using tvrtool::parseMarkers;
using tvrtool::TraceEvent;
using tvrtool::test::Json;

std::string describe(const std::vector<TraceEvent>& events) {
  std::string text;
  for (const TraceEvent& event : events) {
    text += std::string(1, event.phase) + " " + std::to_string(event.pid) + " " + event.name + " @" +
            std::to_string(event.timeNs) + "\n";
  }
  return text;
}

TEST(TraceEventsTest, ConcatenatedMarkersTakeTheTimeOfTheReadTheyBeganIn) {
  // Three reads; the third apply marker was cut between the second and third read.
  const std::string text =
      "B|42|MeanColourProcessing::setup()|0E|42|MeanColourProcessing::setup()|0"
      "B|42|MeanColourProcessing::apply()|0E|42|MeanColourProcessing::apply()|0";
  const size_t cut = text.size() - 10;
  const auto parsed = parseMarkers(text, {{0, 1000}, {72, 2000}, {cut, 3000}});
  EXPECT_EQ(parsed.rejected, 0u);
  EXPECT_EQ(describe(parsed.events),
            "B 42 MeanColourProcessing::setup() @1000\n"
            "E 42 MeanColourProcessing::setup() @1000\n"
            "B 42 MeanColourProcessing::apply() @2000\n"
            "E 42 MeanColourProcessing::apply() @2000\n");
}

TEST(TraceEventsTest, TornAndGarbledMarkersAreCountedAndLeftOut) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"xyzB|1|a()|0E|1|a()|0", "E 1 a() @0\n"},       // garbage glued to a marker
      {"B|1|a()|0E|1|a(", "B 1 a() @0\n"},              // torn at the end
      {"B||a()|0B|1x|a()|0B|1|0", ""},                  // no pid, a bad pid, no name
      {"X|1|a()|0", ""},                                // an unknown phase
      {"B|123456789012|a()|0", ""},                     // a pid too long to be one
  };
  for (const auto& [text, events] : cases) {
    const auto parsed = parseMarkers(text, {{0, 0}});
    EXPECT_EQ(describe(parsed.events), events) << text;
    EXPECT_GE(parsed.rejected, 1u) << text;
  }
  EXPECT_EQ(parseMarkers("", {}).events.size(), 0u);
}

TEST(TraceEventsTest, NamesHoldingBarsStayWhole) {
  const auto parsed = parseMarkers("B|7|a|b()|0E|7|a|b()|0", {{0, 5}});
  EXPECT_EQ(parsed.rejected, 0u);
  EXPECT_EQ(describe(parsed.events), "B 7 a|b() @5\nE 7 a|b() @5\n");
}

TEST(TraceEventsTest, JsonIsValidAndCarriesEveryEventExactly) {
  const std::string awkward = "say \"hi\" \\ \n\t\x01 caf\xc3\xa9";
  const std::vector<TraceEvent> events = {{'B', 42, "P::apply()", 1001234567}, {'E', 42, awkward, 1000000500},
                                          {'E', 42, "P::apply()", 999999500}};
  const std::string text = tvrtool::toChromeTraceJson(events, 1000000000);
  const std::optional<Json> json = tvrtool::test::parseJson(text);
  ASSERT_TRUE(json) << text;
  const Json* list = json->get("traceEvents");
  ASSERT_TRUE(list != nullptr && list->kind == Json::Kind::Array) << text;
  ASSERT_EQ(list->items.size(), 3u);
  const char* phases[] = {"B", "E", "E"};
  const double micros[] = {1234.567, 0.5, -0.5};
  for (size_t i = 0; i < 3; ++i) {
    const Json& event = list->items[i];
    ASSERT_TRUE(event.get("name") && event.get("ph") && event.get("ts") && event.get("pid") && event.get("tid"));
    EXPECT_EQ(event.get("name")->text, events[i].name);
    EXPECT_EQ(event.get("ph")->text, phases[i]);
    EXPECT_DOUBLE_EQ(event.get("ts")->number, micros[i]);
    EXPECT_EQ(event.get("pid")->number, 42);
    EXPECT_EQ(event.get("tid")->number, 42);
  }
  EXPECT_TRUE(tvrtool::test::parseJson(tvrtool::toChromeTraceJson({}, 0)));
}

}  // namespace
