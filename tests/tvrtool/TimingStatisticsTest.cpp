// Median and 95th percentile of per-frame durations.
#include <gtest/gtest.h>

#include <numeric>

#include "TimingStatistics.h"

namespace {

using tvrtool::spreadOf;

std::vector<int64_t> milliseconds(int64_t from, int64_t to) {
  std::vector<int64_t> values(static_cast<size_t>(to - from + 1));
  std::iota(values.begin(), values.end(), from);
  for (int64_t& value : values) value *= 1000000;
  return values;
}

TEST(TimingStatisticsTest, MedianIsTheMiddleOrTheMeanOfTheTwoMiddles) {
  EXPECT_DOUBLE_EQ(spreadOf({5000000, 1000000, 3000000}).medianMs, 3.0);
  EXPECT_DOUBLE_EQ(spreadOf({4000000, 1000000, 2000000, 3000000}).medianMs, 2.5);
  EXPECT_DOUBLE_EQ(spreadOf({1500}).medianMs, 0.0015);
}

TEST(TimingStatisticsTest, P95IsTheNearestRank) {
  EXPECT_DOUBLE_EQ(spreadOf(milliseconds(1, 100)).p95Ms, 95.0);
  EXPECT_DOUBLE_EQ(spreadOf(milliseconds(1, 20)).p95Ms, 19.0);
  EXPECT_DOUBLE_EQ(spreadOf(milliseconds(1, 3)).p95Ms, 3.0);  // few frames: the slowest
  std::vector<int64_t> reversed = milliseconds(1, 100);
  std::reverse(reversed.begin(), reversed.end());
  EXPECT_DOUBLE_EQ(spreadOf(reversed).p95Ms, 95.0);
  EXPECT_DOUBLE_EQ(spreadOf({}).p95Ms, 0.0);
}

}  // namespace
