// What a network is built with: SNPEParam taken from the host's create record, copied and compared;
// and the library's enumerations in the platform's terms, with values outside each enumeration on
// both sides (the image library's rotation and the format names too).
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "SNPEParam.h"
#include "TivoraUtil.h"

namespace {

using tivora::SNPEParam;

void setByte(bool& flag, unsigned char byte) { std::memcpy(&flag, &byte, 1); }

TEST(SNPEParam, TakesTheIndexedNetworkOfTheRecordWithProfilingOff) {
  tvr_create_param_t record;
  std::memset(&record, 0xA5, sizeof record);  // garbage everywhere the record does not define
  std::snprintf(record.dlc_path[3], sizeof record.dlc_path[3], "/models/net3.dlc");
  record.runtime = TVR_RUNTIME_DSP;
  record.profile = TVR_PERF_PROFILE_BURST;
  record.priority = TVR_EXEC_PRIORITY_HIGH;
  setByte(record.cpu_fallback_mode, 2);  // the host's byte, not a bool made of it
  record.use_user_buffers = true;
  record.debug_mode = false;
  const SNPEParam param(&record, 3);
  EXPECT_STREQ(param.dlc_path, "/models/net3.dlc");
  EXPECT_EQ(
      std::vector<int>({param.runtime, param.profile, param.profiling_level, param.priority}),
      std::vector<int>({TVR_RUNTIME_DSP, TVR_PERF_PROFILE_BURST, TVR_PROFILING_LEVEL_OFF, TVR_EXEC_PRIORITY_HIGH}));
  unsigned char switches[3];
  std::memcpy(switches, &param.cpu_fallback_mode, 3);
  EXPECT_EQ(std::vector<int>(switches, switches + 3), std::vector<int>({2, 1, 0}));
  EXPECT_EQ(std::strlen(SNPEParam(&record, 0).dlc_path), 255u) << "a path without terminator is cut";
}

// Every field counts, exactly (switch bytes 1 and 2 both mean true but differ); bytes after the
// path's terminator do not. Copies keep every byte.
TEST(SNPEParam, EqualityComparesEveryFieldAndCopiesKeepThem) {
  tvr_create_param_t record{};
  std::snprintf(record.dlc_path[1], sizeof record.dlc_path[1], "/models/net1.dlc");
  record.use_user_buffers = record.cpu_fallback_mode = true;
  const SNPEParam base(&record, 1);
  EXPECT_FALSE(base == SNPEParam());
  // clang-format off
  const std::vector<std::function<void(SNPEParam&)>> changes = {
      [](auto& p) { p.dlc_path[5] = 'X'; },                 [](auto& p) { p.runtime = TVR_RUNTIME_GPU; },
      [](auto& p) { p.profile = TVR_PERF_PROFILE_BURST; },  [](auto& p) { p.profiling_level = TVR_PROFILING_LEVEL_BASIC; },
      [](auto& p) { p.priority = TVR_EXEC_PRIORITY_LOW; },  [](auto& p) { p.cpu_fallback_mode = false; },
      [](auto& p) { setByte(p.use_user_buffers, 2); },      [](auto& p) { p.debug_mode = true; },
      [](auto& p) { p.dlc_path[200] = 'Z'; }};  // after the terminator: no change
  // clang-format on
  for (size_t i = 0; i < changes.size(); ++i) {
    SNPEParam changed;
    changed = base;
    changes[i](changed);
    EXPECT_EQ(changed == base, i + 1 == changes.size()) << "change " << i;
    SNPEParam copy;
    copy = changed;
    const SNPEParam& alias = copy;
    copy = alias;  // self-assignment keeps the record
    EXPECT_TRUE(copy == changed) << "change " << i;
  }
}

template <typename From>
void expectTable(const std::vector<std::pair<int32_t, int>>& table) {
  for (const auto& [input, expected] : table) {
    EXPECT_EQ(static_cast<int>(tivora::convert(static_cast<From>(input))), expected) << "input " << input;
  }
}

TEST(EnumConversion, EveryValueHasItsPlatformValue) {
  // clang-format off
  expectTable<tvr_runtime_t>({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 5}, {5, -1}, {-1, -1}, {INT32_MIN, -1}});
  expectTable<tvr_perf_profile_t>({{0, 0}, {1, 0}, {2, 1}, {3, 2}, {4, 3}, {5, 4}, {6, 5}, {7, 6}, {8, 7}, {9, 8},
                                   {10, 3}, {-1, 3}});  // unknown: system settings
  expectTable<tvr_profiling_level_t>({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 0}, {-1, 0}});
  expectTable<tvr_exec_priority_t>({{0, 0}, {1, 1}, {2, 2}, {3, 0}, {-1, 0}});
  expectTable<tvr_runtime_check_option_t>({{0, 2}, {1, 0}, {2, 1}, {3, 2}, {-1, 2}});
  expectTable<tvr_rotation_t>({{0, FASTCV_ROTATE_90}, {1, FASTCV_ROTATE_90}, {2, FASTCV_ROTATE_180},
                               {3, FASTCV_ROTATE_270}, {4, FASTCV_ROTATE_90}, {-2, FASTCV_ROTATE_90}});
  const std::vector<std::string> names{"YUV420P_UV", "YUV420P_VU", "nv12", "nv21", "YUV420SP_UV_UBWC",
                                       "YUV420SP_UV_TP10", "YUV420SP_UV_TP10_UBWC", "YUV400", "RAW", "FastCV", "", ""};
  // clang-format on
  for (int32_t value = -1; value < 12; ++value) {
    EXPECT_EQ(tivora::convert(static_cast<tvr_image_format_t>(value)), value < 0 ? "" : names[size_t(value)]) << value;
  }
}

}  // namespace
