// Free functions: conversions of the library's enumerations to the NN runtime's.
//
// Each conversion is total: every input value, also one outside the enumeration, gives a defined
// runtime value.
#pragma once

#include "DlSystem/DlEnums.h"
#include "tvr_export.h"
#include "tvr_types.h"

namespace tivora {

// 0..3 map to the runtime's CPU, GPU, DSP and GPU_FLOAT16; 4 to AIP_FIXED_TF (5); others UNSET.
TVR_EXPORT Snpe_Runtime_t convert(tvr_runtime_t runtime);

// 0 and 1 map to the runtime's default/balanced (0), 2..9 to 1..8; others to SYSTEM_SETTINGS.
TVR_EXPORT Snpe_PerformanceProfile_t convert(tvr_perf_profile_t profile);

// 1..3 pass through; others (0 included) map to OFF.
TVR_EXPORT Snpe_ProfilingLevel_t convert(tvr_profiling_level_t level);

// 1 and 2 pass through; others map to NORMAL.
TVR_EXPORT Snpe_ExecutionPriorityHint_t convert(tvr_exec_priority_t priority);

// 1 maps to NORMAL_CHECK, 2 to BASIC_CHECK; others (0 included) to DEFAULT.
TVR_EXPORT Snpe_RuntimeCheckOption_t convert(tvr_runtime_check_option_t option);

}  // namespace tivora
