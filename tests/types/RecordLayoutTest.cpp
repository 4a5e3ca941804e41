// The host was built separately and shares only the record declarations, so their layout is ABI:
// sizes, alignments and field offsets of LP64 (arm64 and x86-64). A reordered, retyped or inserted
// field fails the build.
#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

#include "SNPEParam.h"
#include "TivoraLogger.h"
#include "tvr_types.h"

namespace {

#define AT(Type, field, offset) (offsetof(Type, field) == (offset))

static_assert(sizeof(tvr_size_t) == 8 && AT(tvr_size_t, w, 0) && AT(tvr_size_t, h, 4));
static_assert(sizeof(tvr_pos_t) == 8 && AT(tvr_pos_t, x, 0) && AT(tvr_pos_t, y, 4));
static_assert(sizeof(tvr_mem_t) == 32 && alignof(tvr_mem_t) == 8 && AT(tvr_mem_t, p_base, 0) &&
              AT(tvr_mem_t, buf_size, 8) && AT(tvr_mem_t, heap_id, 12) && AT(tvr_mem_t, native, 16) &&
              AT(tvr_mem_t, native_handle, 24));
static_assert(sizeof(tvr_crop_t) == 16 && AT(tvr_crop_t, pos, 0) && AT(tvr_crop_t, size, 8));
static_assert(sizeof(tvr_image_buf_t) == 80 && alignof(tvr_image_buf_t) == 8 && AT(tvr_image_buf_t, buf, 0) &&
              AT(tvr_image_buf_t, format, 32) && AT(tvr_image_buf_t, size, 36) && AT(tvr_image_buf_t, offset, 44) &&
              AT(tvr_image_buf_t, stride, 56) && AT(tvr_image_buf_t, scanline, 60) && AT(tvr_image_buf_t, crop, 64));
static_assert(sizeof(tvr_create_param_t) == 1304 && alignof(tvr_create_param_t) == 4 &&
              AT(tvr_create_param_t, dlc_path, 0) && AT(tvr_create_param_t, dlc_num, 1280) &&
              AT(tvr_create_param_t, reserved, 1284) && AT(tvr_create_param_t, runtime, 1288) &&
              AT(tvr_create_param_t, profile, 1292) && AT(tvr_create_param_t, priority, 1296) &&
              AT(tvr_create_param_t, cpu_fallback_mode, 1300) && AT(tvr_create_param_t, use_user_buffers, 1301) &&
              AT(tvr_create_param_t, debug_mode, 1302));
static_assert(sizeof(tvr_stream_info_t) == 20 && AT(tvr_stream_info_t, format, 0) && AT(tvr_stream_info_t, size, 4) &&
              AT(tvr_stream_info_t, stride, 12) && AT(tvr_stream_info_t, scanline, 16));
static_assert(sizeof(tvr_static_param_t) == 20 && AT(tvr_static_param_t, src_info, 0));
static_assert(sizeof(tvr_input_param_t) == 16 && AT(tvr_input_param_t, rotation, 0) && AT(tvr_input_param_t, p_src, 8));
// The network parameter record lives in contiguous vectors and is copied as a value.
static_assert(sizeof(tivora::SNPEParam) == 276 && !std::is_polymorphic_v<tivora::SNPEParam> &&
              AT(tivora::SNPEParam, dlc_path, 0) && AT(tivora::SNPEParam, runtime, 256) &&
              AT(tivora::SNPEParam, profile, 260) && AT(tivora::SNPEParam, profiling_level, 264) &&
              AT(tivora::SNPEParam, priority, 268) && AT(tivora::SNPEParam, cpu_fallback_mode, 272) &&
              AT(tivora::SNPEParam, use_user_buffers, 273) && AT(tivora::SNPEParam, debug_mode, 274));

// Every enumeration is a signed 32-bit value, whatever the host sends.
template <typename... E>
constexpr bool kSigned32 = ((sizeof(E) == 4 && std::is_signed_v<std::underlying_type_t<E>>)&&...);
static_assert(
    kSigned32<tvr_runtime_t, tvr_perf_profile_t, tvr_exec_priority_t, tvr_profiling_level_t, tvr_runtime_check_option_t,
              tvr_rotation_t, tvr_image_format_t, tivora::TivoraLogger::tvr_loglevel_t>);
static_assert(sizeof(tvr_err_t) == 4 && std::is_signed_v<tvr_err_t>);

}  // namespace
