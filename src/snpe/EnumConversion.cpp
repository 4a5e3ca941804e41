// The library's enumerations in the NN runtime's terms. Values are compared as unsigned, so a
// negative value falls to the fallback with the too-large ones.
#include <cstddef>
#include <cstdint>

#include "TivoraUtil.h"

namespace tivora {

namespace {

template <typename To, std::size_t N>
To lookup(int32_t value, const To (&table)[N], To fallback) {
  const auto index = static_cast<uint32_t>(value);
  return index < N ? table[index] : fallback;
}

}  // namespace

Snpe_Runtime_t convert(tvr_runtime_t runtime) {
  static constexpr Snpe_Runtime_t kTable[] = {SNPE_RUNTIME_CPU, SNPE_RUNTIME_GPU, SNPE_RUNTIME_DSP,
                                              SNPE_RUNTIME_GPU_FLOAT16, SNPE_RUNTIME_AIP_FIXED_TF};
  return lookup(runtime, kTable, SNPE_RUNTIME_UNSET);
}

Snpe_PerformanceProfile_t convert(tvr_perf_profile_t profile) {
  static constexpr Snpe_PerformanceProfile_t kTable[] = {SNPE_PERFORMANCE_PROFILE_DEFAULT,
                                                         SNPE_PERFORMANCE_PROFILE_BALANCED,
                                                         SNPE_PERFORMANCE_PROFILE_HIGH_PERFORMANCE,
                                                         SNPE_PERFORMANCE_PROFILE_POWER_SAVER,
                                                         SNPE_PERFORMANCE_PROFILE_SYSTEM_SETTINGS,
                                                         SNPE_PERFORMANCE_PROFILE_SUSTAINED_HIGH_PERFORMANCE,
                                                         SNPE_PERFORMANCE_PROFILE_BURST,
                                                         SNPE_PERFORMANCE_PROFILE_LOW_POWER_SAVER,
                                                         SNPE_PERFORMANCE_PROFILE_HIGH_POWER_SAVER,
                                                         SNPE_PERFORMANCE_PROFILE_LOW_BALANCED};
  // Deliberately system settings, not default, for values the runtime would not know.
  return lookup(profile, kTable, SNPE_PERFORMANCE_PROFILE_SYSTEM_SETTINGS);
}

Snpe_ProfilingLevel_t convert(tvr_profiling_level_t level) {
  static constexpr Snpe_ProfilingLevel_t kTable[] = {SNPE_PROFILING_LEVEL_OFF, SNPE_PROFILING_LEVEL_BASIC,
                                                     SNPE_PROFILING_LEVEL_DETAILED, SNPE_PROFILING_LEVEL_MODERATE};
  return lookup(level, kTable, SNPE_PROFILING_LEVEL_OFF);
}

Snpe_ExecutionPriorityHint_t convert(tvr_exec_priority_t priority) {
  static constexpr Snpe_ExecutionPriorityHint_t kTable[] = {SNPE_EXECUTION_PRIORITY_NORMAL,
                                                            SNPE_EXECUTION_PRIORITY_HIGH, SNPE_EXECUTION_PRIORITY_LOW};
  return lookup(priority, kTable, SNPE_EXECUTION_PRIORITY_NORMAL);
}

Snpe_RuntimeCheckOption_t convert(tvr_runtime_check_option_t option) {
  static constexpr Snpe_RuntimeCheckOption_t kTable[] = {
      SNPE_RUNTIME_CHECK_OPTION_DEFAULT, SNPE_RUNTIME_CHECK_OPTION_NORMAL_CHECK, SNPE_RUNTIME_CHECK_OPTION_BASIC_CHECK};
  return lookup(option, kTable, SNPE_RUNTIME_CHECK_OPTION_DEFAULT);
}

}  // namespace tivora
