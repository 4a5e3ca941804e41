// Median and 95th percentile of per-frame durations.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "TimingStatistics.h"

namespace {

using tvrtool::spreadOf;

TEST(TimingStatisticsTest, MedianIsTheMiddleOrTheMeanOfTheTwoMiddlesAndP95TheNearestRank) {
  EXPECT_DOUBLE_EQ(spreadOf({5000000, 1000000, 3000000}).medianMs, 3.0);
  EXPECT_DOUBLE_EQ(spreadOf({4000000, 1000000, 2000000, 3000000}).medianMs, 2.5);
  std::vector<int64_t> values(100);
  std::iota(values.rbegin(), values.rend(), 1);  // 100 down to 1 ms
  for (int64_t& value : values) value *= 1000000;
  EXPECT_DOUBLE_EQ(spreadOf(values).p95Ms, 95.0);
  EXPECT_DOUBLE_EQ(spreadOf(std::vector<int64_t>(values.end() - 20, values.end())).p95Ms, 19.0);
  EXPECT_DOUBLE_EQ(spreadOf(std::vector<int64_t>(values.end() - 3, values.end())).p95Ms, 3.0);  // few frames: the slowest
  EXPECT_DOUBLE_EQ(spreadOf({}).p95Ms, 0.0);
}

}  // namespace
