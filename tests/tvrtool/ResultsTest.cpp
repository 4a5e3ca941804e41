// Per-frame stage times as a plugin reports them, and the CSV line of each frame.
#include <gtest/gtest.h>

#include "FrameTimings.h"
#include "ResultsFile.h"

namespace {

using tvrtool::FrameTimings;

std::string line(uint32_t frame, int32_t status, const std::vector<int64_t>& columns, const char* text) {
  char out[256];
  tvrtool::formatResultLine(out, sizeof out, frame, status, columns.data(), columns.size(), 2500000, text);
  return out;
}

TEST(FrameTimingsTest, FirstReportNamesTheColumnsAndLaterStagesAreMatchedByName) {
  FrameTimings timings(3);
  int64_t columns[FrameTimings::kMaxStages];
  const tivora_stage_time_t first[] = {{"split", 0, 10}, {"execute", 10, 20}};
  timings.add(40, first, 2, columns);
  const std::string execute = "execute";  // the same name in other memory
  const tivora_stage_time_t later[] = {{execute.c_str(), 0, 21}, {"extra", 0, 5}};
  timings.add(30, later, 2, columns);
  EXPECT_EQ(columns[0], -1);
  EXPECT_EQ(columns[1], 21);
  ASSERT_EQ(timings.columnCount(), 2u);
  EXPECT_STREQ(timings.columnName(1), "execute");
  EXPECT_EQ(timings.column(0), std::vector<int64_t>{10});
  EXPECT_EQ(timings.column(1), (std::vector<int64_t>{20, 21}));
  EXPECT_EQ(timings.apply(), (std::vector<int64_t>{40, 30}));
}

TEST(ResultsFileTest, LinesHoldMillisecondsEmptyFieldsAndTheTextQuoted) {
  EXPECT_EQ(line(1, 0, {1500000, -1}, "mean \"x\", y\nz"), "1,0,1.500,,2.500,\"mean \"\"x\"\", y z\"\n");
  EXPECT_EQ(line(7, 12, {1500000}, ""), "7,12,,2.500,\"\"\n");  // a failed apply reports no stages
  char cut[32];
  EXPECT_EQ(tvrtool::quoteCsv(std::string(100, 'a').c_str(), cut, sizeof cut), 31u);
  EXPECT_EQ(std::string(cut), "\"" + std::string(29, 'a') + "\"");
}

}  // namespace
