#include <gtest/gtest.h>

#include <cstring>

#include "SNPEParam.h"

namespace {

using tivora::SNPEParam;

tvr_create_param_t createRecord() {
  tvr_create_param_t record;
  std::memset(&record, 0xA5, sizeof record);  // garbage everywhere the record does not define
  for (int i = 0; i < 5; ++i) {
    std::snprintf(record.dlc_path[i], sizeof record.dlc_path[i], "/vendor/etc/camera/net%d.dlc", i);
  }
  record.dlc_num = 5;
  record.runtime = TVR_RUNTIME_DSP;
  record.profile = TVR_PERF_PROFILE_BURST;
  record.priority = TVR_EXEC_PRIORITY_HIGH;
  record.cpu_fallback_mode = true;
  record.use_user_buffers = true;
  record.debug_mode = false;
  return record;
}

TEST(SNPEParam, DefaultRecordIsEmpty) {
  const SNPEParam param;
  EXPECT_STREQ(param.dlc_path, "");
  EXPECT_EQ(param.runtime, 0);
  EXPECT_EQ(param.profile, 0);
  EXPECT_EQ(param.profiling_level, 0);
  EXPECT_EQ(param.priority, 0);
  EXPECT_FALSE(param.cpu_fallback_mode || param.use_user_buffers || param.debug_mode);
}

TEST(SNPEParam, TakesTheIndexedPathAndTheSettingsWithProfilingOff) {
  const tvr_create_param_t record = createRecord();
  const SNPEParam param(&record, 3);
  EXPECT_STREQ(param.dlc_path, "/vendor/etc/camera/net3.dlc");
  EXPECT_EQ(param.runtime, TVR_RUNTIME_DSP);
  EXPECT_EQ(param.profile, TVR_PERF_PROFILE_BURST);
  EXPECT_EQ(param.profiling_level, TVR_PROFILING_LEVEL_OFF);
  EXPECT_EQ(param.priority, TVR_EXEC_PRIORITY_HIGH);
  EXPECT_TRUE(param.cpu_fallback_mode);
  EXPECT_TRUE(param.use_user_buffers);
  EXPECT_FALSE(param.debug_mode);
}

TEST(SNPEParam, PathWithoutTerminatorIsCutAtTheBuffer) {
  tvr_create_param_t record = createRecord();
  std::memset(record.dlc_path[0], 'x', sizeof record.dlc_path);  // no NUL anywhere in the paths
  const SNPEParam param(&record, 0);
  EXPECT_EQ(std::strlen(param.dlc_path), 255u);
}

TEST(SNPEParam, EqualityComparesEveryFieldExactly) {
  const tvr_create_param_t record = createRecord();
  const SNPEParam base(&record, 1);
  EXPECT_TRUE(base == SNPEParam(&record, 1));
  EXPECT_FALSE(base == SNPEParam(&record, 2));

  auto differs = [&](auto change) {
    SNPEParam other = base;
    change(other);
    return !(base == other);
  };
  EXPECT_TRUE(differs([](SNPEParam& p) { p.dlc_path[5] = 'X'; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.runtime = TVR_RUNTIME_CPU; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.profile = TVR_PERF_PROFILE_DEFAULT; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.profiling_level = TVR_PROFILING_LEVEL_BASIC; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.priority = TVR_EXEC_PRIORITY_LOW; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.cpu_fallback_mode = false; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.use_user_buffers = false; }));
  EXPECT_TRUE(differs([](SNPEParam& p) { p.debug_mode = true; }));
  // Two bytes that both mean true are still different switches.
  EXPECT_TRUE(differs([](SNPEParam& p) {
    const unsigned char two = 2;
    std::memcpy(&p.use_user_buffers, &two, 1);
  }));
  // Bytes after the path's terminator do not count.
  EXPECT_FALSE(differs([](SNPEParam& p) { p.dlc_path[200] = 'Z'; }));
}

TEST(SNPEParam, SwitchBytesTravelAsTheHostWroteThem) {
  tvr_create_param_t record = createRecord();
  const unsigned char two = 2;
  std::memcpy(&record.debug_mode, &two, 1);
  const SNPEParam fromHost(&record, 0);
  SNPEParam copy;
  copy = fromHost;
  unsigned char byte = 0;
  std::memcpy(&byte, &copy.debug_mode, 1);
  EXPECT_EQ(byte, 2);
  EXPECT_TRUE(copy == fromHost);
  record.debug_mode = true;
  EXPECT_FALSE(SNPEParam(&record, 0) == fromHost);
}

TEST(SNPEParam, AssignmentCopiesEveryField) {
  const tvr_create_param_t record = createRecord();
  const SNPEParam source(&record, 4);
  SNPEParam target;
  target = source;
  EXPECT_TRUE(target == source);
  EXPECT_STREQ(target.dlc_path, "/vendor/etc/camera/net4.dlc");
  const SNPEParam& alias = target;
  target = alias;  // self-assignment keeps the record
  EXPECT_TRUE(target == source);
}

}  // namespace
