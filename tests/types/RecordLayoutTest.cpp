// The host was built separately and shares only the record declarations, so their layout is ABI.
// Expected offsets are computed here from the field tables (type widths and alignments of LP64,
// in declared order), never from the structs; a reordered or retyped field fails the build on
// every architecture this file is compiled for.
#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

#include "SNPEParam.h"
#include "TivoraLogger.h"
#include "tvr_types.h"

namespace {

struct Field {
  size_t size;
  size_t align;
};

// LP64 widths of the field types that the records use.
constexpr Field kU8{1, 1}, kBool{1, 1}, kI32{4, 4}, kU32{4, 4}, kPtr{8, 8};
constexpr Field chars(size_t n) { return {n, 1}; }
constexpr Field u32Array(size_t n) { return {4 * n, 4}; }

template <size_t N>
struct Layout {
  size_t offset[N];
  size_t size;
  size_t align;
  constexpr Field asField() const { return {size, align}; }
};

constexpr size_t roundUp(size_t value, size_t align) { return (value + align - 1) / align * align; }

// C's layout rule: each field at the next multiple of its alignment, the record padded to its own.
template <size_t N>
constexpr Layout<N> layoutOf(const Field (&fields)[N]) {
  Layout<N> layout{};
  size_t at = 0;
  layout.align = 1;
  for (size_t i = 0; i < N; ++i) {
    at = roundUp(at, fields[i].align);
    layout.offset[i] = at;
    at += fields[i].size;
    if (fields[i].align > layout.align) layout.align = fields[i].align;
  }
  layout.size = roundUp(at, layout.align);
  return layout;
}

#define EXPECT_LAYOUT(Type, layout) \
  static_assert(sizeof(Type) == (layout).size && alignof(Type) == (layout).align, #Type " size")
#define EXPECT_FIELD(Type, field, layout, index) \
  static_assert(offsetof(Type, field) == (layout).offset[index], #Type "::" #field " offset")

// Image buffer record and its nested records.
constexpr auto kSize = layoutOf({kU32, kU32});  // w, h
EXPECT_LAYOUT(tvr_size_t, kSize);
EXPECT_FIELD(tvr_size_t, w, kSize, 0);
EXPECT_FIELD(tvr_size_t, h, kSize, 1);

constexpr auto kPos = layoutOf({kI32, kI32});  // x, y
EXPECT_LAYOUT(tvr_pos_t, kPos);
EXPECT_FIELD(tvr_pos_t, x, kPos, 0);
EXPECT_FIELD(tvr_pos_t, y, kPos, 1);

constexpr auto kMem = layoutOf({kPtr, kU32, kI32, kPtr, kPtr});
EXPECT_LAYOUT(tvr_mem_t, kMem);
EXPECT_FIELD(tvr_mem_t, p_base, kMem, 0);
EXPECT_FIELD(tvr_mem_t, buf_size, kMem, 1);
EXPECT_FIELD(tvr_mem_t, heap_id, kMem, 2);
EXPECT_FIELD(tvr_mem_t, native, kMem, 3);
EXPECT_FIELD(tvr_mem_t, native_handle, kMem, 4);

constexpr auto kCrop = layoutOf({kPos.asField(), kSize.asField()});
EXPECT_LAYOUT(tvr_crop_t, kCrop);
EXPECT_FIELD(tvr_crop_t, pos, kCrop, 0);
EXPECT_FIELD(tvr_crop_t, size, kCrop, 1);

constexpr auto kImageBuf = layoutOf({kMem.asField(), kI32, kSize.asField(), u32Array(3), kU32, kU32, kCrop.asField()});
EXPECT_LAYOUT(tvr_image_buf_t, kImageBuf);
EXPECT_FIELD(tvr_image_buf_t, buf, kImageBuf, 0);
EXPECT_FIELD(tvr_image_buf_t, format, kImageBuf, 1);
EXPECT_FIELD(tvr_image_buf_t, size, kImageBuf, 2);
EXPECT_FIELD(tvr_image_buf_t, offset, kImageBuf, 3);
EXPECT_FIELD(tvr_image_buf_t, stride, kImageBuf, 4);
EXPECT_FIELD(tvr_image_buf_t, scanline, kImageBuf, 5);
EXPECT_FIELD(tvr_image_buf_t, crop, kImageBuf, 6);

// Host records.
constexpr auto kCreate = layoutOf({chars(5 * 256), kU32, kU8, kI32, kI32, kI32, kBool, kBool, kBool});
EXPECT_LAYOUT(tvr_create_param_t, kCreate);
EXPECT_FIELD(tvr_create_param_t, dlc_path, kCreate, 0);
EXPECT_FIELD(tvr_create_param_t, dlc_num, kCreate, 1);
EXPECT_FIELD(tvr_create_param_t, reserved, kCreate, 2);
EXPECT_FIELD(tvr_create_param_t, runtime, kCreate, 3);
EXPECT_FIELD(tvr_create_param_t, profile, kCreate, 4);
EXPECT_FIELD(tvr_create_param_t, priority, kCreate, 5);
EXPECT_FIELD(tvr_create_param_t, cpu_fallback_mode, kCreate, 6);
EXPECT_FIELD(tvr_create_param_t, use_user_buffers, kCreate, 7);
EXPECT_FIELD(tvr_create_param_t, debug_mode, kCreate, 8);

constexpr auto kStreamInfo = layoutOf({kI32, kSize.asField(), kU32, kU32});
EXPECT_LAYOUT(tvr_stream_info_t, kStreamInfo);
EXPECT_FIELD(tvr_stream_info_t, format, kStreamInfo, 0);
EXPECT_FIELD(tvr_stream_info_t, size, kStreamInfo, 1);
EXPECT_FIELD(tvr_stream_info_t, stride, kStreamInfo, 2);
EXPECT_FIELD(tvr_stream_info_t, scanline, kStreamInfo, 3);

constexpr auto kStatic = layoutOf({kStreamInfo.asField()});
EXPECT_LAYOUT(tvr_static_param_t, kStatic);
EXPECT_FIELD(tvr_static_param_t, src_info, kStatic, 0);

constexpr auto kInput = layoutOf({kI32, kPtr});
EXPECT_LAYOUT(tvr_input_param_t, kInput);
EXPECT_FIELD(tvr_input_param_t, rotation, kInput, 0);
EXPECT_FIELD(tvr_input_param_t, p_src, kInput, 1);

// The network parameter record is kept in contiguous vectors and copied as a value.
constexpr auto kSnpeParam = layoutOf({chars(256), kI32, kI32, kI32, kI32, kBool, kBool, kBool});
EXPECT_LAYOUT(tivora::SNPEParam, kSnpeParam);
EXPECT_FIELD(tivora::SNPEParam, dlc_path, kSnpeParam, 0);
EXPECT_FIELD(tivora::SNPEParam, runtime, kSnpeParam, 1);
EXPECT_FIELD(tivora::SNPEParam, profile, kSnpeParam, 2);
EXPECT_FIELD(tivora::SNPEParam, profiling_level, kSnpeParam, 3);
EXPECT_FIELD(tivora::SNPEParam, priority, kSnpeParam, 4);
EXPECT_FIELD(tivora::SNPEParam, cpu_fallback_mode, kSnpeParam, 5);
EXPECT_FIELD(tivora::SNPEParam, use_user_buffers, kSnpeParam, 6);
EXPECT_FIELD(tivora::SNPEParam, debug_mode, kSnpeParam, 7);
static_assert(!std::is_polymorphic_v<tivora::SNPEParam>, "SNPEParam is a plain value");

// Every enumeration is a signed 32-bit value, whatever the host sends.
template <typename E>
constexpr bool isSigned32 = sizeof(E) == 4 && std::is_signed_v<std::underlying_type_t<E>>;
static_assert(isSigned32<tvr_runtime_t> && isSigned32<tvr_perf_profile_t> && isSigned32<tvr_exec_priority_t> &&
              isSigned32<tvr_profiling_level_t> && isSigned32<tvr_runtime_check_option_t> &&
              isSigned32<tvr_rotation_t> && isSigned32<tvr_image_format_t> &&
              isSigned32<tivora::TivoraLogger::tvr_loglevel_t>);
static_assert(sizeof(tvr_err_t) == 4 && std::is_signed_v<tvr_err_t>);

TEST(RecordLayout, IsPinnedAtCompileTime) {
  // The checks above are static; this case only makes the program report that it ran.
  EXPECT_EQ(sizeof(tvr_create_param_t), 1304u);
  EXPECT_EQ(sizeof(tvr_image_buf_t), 80u);
}

}  // namespace
