// Records and enumerations that cross the boundary between the host camera framework and a
// processing.
//
// The host was built separately and shares only these declarations, so they are plain records:
// fields in declared order, natural alignment, no constructors. Field order and widths are part of
// the ABI and must not change. Every enumeration has a fixed 32-bit signed underlying type, so any
// 32-bit value the host sends is representable; the library gives each unknown value a defined
// meaning.
#pragma once

#include <stdbool.h>
#include <stdint.h>

// ---------------------------------------------------------------------------------------------
// Status codes
// ---------------------------------------------------------------------------------------------

// Result of every lifecycle, network and image operation. 0 is success. Codes that a derived
// processing's hooks return pass through the base unchanged, so any value may appear.
typedef int32_t tvr_err_t;

enum : tvr_err_t {
  TVR_OK = 0,
  TVR_ERR_NOT_FOUND = 1,            // network manager, slot, network or user buffers missing
  TVR_ERR_RUNTIME_UNAVAILABLE = 2,  // the requested processor cannot run networks
  TVR_ERR_NOT_READY = 3,            // the processing is not bound to the network manager
  TVR_ERR_CONTAINER_OPEN = 4,       // the model container could not be opened
  TVR_ERR_BUILD = 5,                // the network could not be built
  TVR_ERR_EXECUTE = 7,              // the network's execution failed
  TVR_ERR_MODEL_READ = 8,           // the model file cannot be read
  TVR_ERR_INVALID_ARG = 12,         // null record, size mismatch, wrong format, zero divisor
  TVR_ERR_OPERATION_MODE = 16,      // the image library's operation mode cannot be set
  TVR_ERR_FILE_READ = 18,           // a file could not be read
};

// ---------------------------------------------------------------------------------------------
// Enumerations
// ---------------------------------------------------------------------------------------------

// Processor a network runs on. Other values select no runtime.
enum tvr_runtime_t : int32_t {
  TVR_RUNTIME_CPU = 0,          // 32-bit float
  TVR_RUNTIME_GPU = 1,          // mixed 32/16-bit float
  TVR_RUNTIME_DSP = 2,          // 8-bit fixed point
  TVR_RUNTIME_GPU_FLOAT16 = 3,  // 16-bit float
  TVR_RUNTIME_AIP = 4,          // AI processor, 8-bit fixed point
};

// Performance profile of a network. Other values select system settings.
enum tvr_perf_profile_t : int32_t {
  TVR_PERF_PROFILE_DEFAULT = 0,
  TVR_PERF_PROFILE_BALANCED = 1,  // same runtime setting as DEFAULT
  TVR_PERF_PROFILE_HIGH_PERFORMANCE = 2,
  TVR_PERF_PROFILE_POWER_SAVER = 3,
  TVR_PERF_PROFILE_SYSTEM_SETTINGS = 4,
  TVR_PERF_PROFILE_SUSTAINED_HIGH_PERFORMANCE = 5,
  TVR_PERF_PROFILE_BURST = 6,
  TVR_PERF_PROFILE_LOW_POWER_SAVER = 7,
  TVR_PERF_PROFILE_HIGH_POWER_SAVER = 8,
  TVR_PERF_PROFILE_LOW_BALANCED = 9,
};

// Execution priority hint of a network. Other values select normal.
enum tvr_exec_priority_t : int32_t {
  TVR_EXEC_PRIORITY_NORMAL = 0,
  TVR_EXEC_PRIORITY_HIGH = 1,
  TVR_EXEC_PRIORITY_LOW = 2,
};

// Profiling level of a network. Other values select off.
enum tvr_profiling_level_t : int32_t {
  TVR_PROFILING_LEVEL_OFF = 0,
  TVR_PROFILING_LEVEL_BASIC = 1,
  TVR_PROFILING_LEVEL_DETAILED = 2,
  TVR_PROFILING_LEVEL_MODERATE = 3,
};

// How thoroughly a runtime's availability is checked. Other values select default.
enum tvr_runtime_check_option_t : int32_t {
  TVR_RUNTIME_CHECK_DEFAULT = 0,
  TVR_RUNTIME_CHECK_NORMAL = 1,
  TVR_RUNTIME_CHECK_BASIC = 2,
};

// Clockwise rotation of the source frame. Every value other than 1, 2 and 3, 0 included, rotates
// by 90 degrees when a rotation stage runs.
enum tvr_rotation_t : int32_t {
  TVR_ROTATION_0 = 0,
  TVR_ROTATION_90 = 1,
  TVR_ROTATION_180 = 2,
  TVR_ROTATION_270 = 3,
};

// Pixel layout of an image buffer. The names printed for each value are those of
// tivora::convert(tvr_image_format_t).
enum tvr_image_format_t : int32_t {
  TVR_FORMAT_YUV420P_UV = 0,
  TVR_FORMAT_YUV420P_VU = 1,
  TVR_FORMAT_NV12 = 2,
  TVR_FORMAT_NV21 = 3,
  TVR_FORMAT_YUV420SP_UV_UBWC = 4,
  TVR_FORMAT_YUV420SP_UV_TP10 = 5,
  TVR_FORMAT_YUV420SP_UV_TP10_UBWC = 6,  // memory from the image library's aligned allocator
  TVR_FORMAT_YUV400 = 7,
  TVR_FORMAT_RAW = 8,
  TVR_FORMAT_FASTCV = 9,
};

// ---------------------------------------------------------------------------------------------
// Image buffer record
// ---------------------------------------------------------------------------------------------

typedef struct {
  uint32_t w;
  uint32_t h;
} tvr_size_t;

typedef struct {
  int32_t x;
  int32_t y;
} tvr_pos_t;

// Memory that holds the pixels of an image buffer.
typedef struct {
  uint8_t* p_base;      // start of the pixel memory; every image operation goes through it alone
  uint32_t buf_size;    // bytes of pixel memory
  int32_t heap_id;      // heap the host allocated from; 0 for buffers made by the library
  void* native;         // host-side object behind the memory; null for buffers made by the library
  void* native_handle;  // host-side handle of the memory; null for buffers made by the library
} tvr_mem_t;

// Region of interest of an image buffer.
typedef struct {
  tvr_pos_t pos;  // top-left corner
  tvr_size_t size;
} tvr_crop_t;

// One image: its memory, layout and region of interest.
typedef struct {
  tvr_mem_t buf;
  tvr_image_format_t format;
  tvr_size_t size;     // w: row length in samples (bytes for interleaved CbCr and for RGB888)
  uint32_t offset[3];  // byte offsets of the planes from buf.p_base; plane 0 is luma
  uint32_t stride;     // bytes from one row to the next
  uint32_t scanline;   // rows allocated per plane
  tvr_crop_t crop;
} tvr_image_buf_t;

// ---------------------------------------------------------------------------------------------
// Host records
// ---------------------------------------------------------------------------------------------

// Given to setup: the networks a processing wants.
typedef struct {
  char dlc_path[5][256];  // model container path for network index 0..4, NUL-terminated
  uint32_t dlc_num;       // entries of dlc_path in use
  uint8_t reserved;       // not interpreted; keeps the host's layout
  tvr_runtime_t runtime;  // processor the networks run on
  tvr_perf_profile_t profile;
  tvr_exec_priority_t priority;
  bool cpu_fallback_mode;  // also allow the CPU behind `runtime`
  bool use_user_buffers;   // the networks run on caller-supplied buffers
  bool debug_mode;         // build in the runtime's debug mode
} tvr_create_param_t;

// Format, size and layout of a stream of frames.
typedef struct {
  tvr_image_format_t format;
  tvr_size_t size;
  uint32_t stride;    // bytes per row
  uint32_t scanline;  // rows per plane
} tvr_stream_info_t;

// Given to initialize: the source stream, constant while it runs.
typedef struct {
  tvr_stream_info_t src_info;
} tvr_static_param_t;

// First argument of apply.
typedef struct {
  tvr_rotation_t rotation;       // rotation to apply to the source
  const tvr_image_buf_t* p_src;  // the source frame; may be null
} tvr_input_param_t;

// Second and third arguments of apply. Their contents are agreed between the host and each
// processing, which defines them; the base only passes them on.
struct tvr_output_param_t;
struct tvr_debug_param_t;
