#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "TivoraUtil.h"

namespace {

using tivora::convert;

// (input, expected runtime value) pairs, with values outside each enumeration on both sides.
template <typename From>
void expectTable(const std::vector<std::pair<int32_t, int>>& table) {
  for (const auto& [input, expected] : table) {
    EXPECT_EQ(static_cast<int>(convert(static_cast<From>(input))), expected) << "input " << input;
  }
}

TEST(EnumConversion, RuntimeSkipsTheRuntimesValueFourAndUnsetsTheRest) {
  expectTable<tvr_runtime_t>({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 5}, {5, -1}, {-1, -1}, {INT32_MIN, -1}});
}

TEST(EnumConversion, PerfProfileFoldsDefaultAndBalancedAndFallsBackToSystemSettings) {
  expectTable<tvr_perf_profile_t>(
      {{0, 0}, {1, 0}, {2, 1}, {3, 2}, {4, 3}, {5, 4}, {6, 5}, {7, 6}, {8, 7}, {9, 8}, {10, 3}, {1000, 3}, {-1, 3}});
}

TEST(EnumConversion, ProfilingLevelPassesOneToThreeAndTurnsTheRestOff) {
  expectTable<tvr_profiling_level_t>({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 0}, {-1, 0}});
}

TEST(EnumConversion, ExecPriorityPassesHighAndLowAndDefaultsToNormal) {
  expectTable<tvr_exec_priority_t>({{0, 0}, {1, 1}, {2, 2}, {3, 0}, {-1, 0}});
}

TEST(EnumConversion, RuntimeCheckOptionIsShiftedByOneWithDefaultForTheRest) {
  expectTable<tvr_runtime_check_option_t>({{0, 2}, {1, 0}, {2, 1}, {3, 2}, {-1, 2}});
}

}  // namespace
