// Free functions: conversions of the library's enumerations to the platform's, image format names,
// and small file helpers for processings.
//
// The enumeration conversions are total: every input value, also one outside the enumeration,
// gives a defined platform value (the format names excepted, see there).
#pragma once

#include <string>

#include "DlSystem/DlEnums.h"
#include "fastcv.h"
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

// The image library's clockwise rotation: 2 a half turn, 3 three quarters; every other value,
// 0 included, a quarter turn (callers skip rotation 0 before asking).
TVR_EXPORT fcvRotateDegree convert(tvr_rotation_t rotation);

// The format's name ("YUV420P_UV", "YUV420P_VU", "nv12", "nv21", "YUV420SP_UV_UBWC",
// "YUV420SP_UV_TP10", "YUV420SP_UV_TP10_UBWC", "YUV400", "RAW", "FastCV" for 0..9); other values give an
// empty name.
TVR_EXPORT std::string convert(tvr_image_format_t format);

// Reads the whole file into a new buffer from malloc (the caller frees it) holding the file's
// bytes and one 0 byte after them, so a text file can be used as a string; *size is the length
// without that byte. TVR_ERR_FILE_READ (an ERROR message under "TivoraUtil") when the file cannot
// be opened, measured or buffered; *data and *size are then left as they were.
TVR_EXPORT tvr_err_t readFromFile(const char* path, unsigned char** data, int* size);

// Writes `height` rows of `width` tightly packed RGB888 pixels, no header, to
// "/data/vendor/camera/<name>", or to "/data/vendor/camera/rgb_<width>x<height>.raw" when `name`
// is null. For looking at what a network saw; an ERROR message when the file cannot be opened.
TVR_EXPORT void outputRawImage(const char* name, const unsigned char* rgb, unsigned int width, unsigned int height);

// `high` if value > high, else `low` if value < low, else value (NaN comes back unchanged).
TVR_EXPORT float clip(float value, float low, float high);

}  // namespace tivora
