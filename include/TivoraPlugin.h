// A processing as a plugin: the plain C functions that a host (tvrtool run, a test bench, a camera
// host of one's own) finds with dlsym in the processing's shared library.
//
// A processing's library defines the required four with one macro, after its class:
//
//   #include <TivoraPlugin.h>
//   TIVORA_PLUGIN(MyProcessing, MyOutput)   // class derived from tivora::TivoraBase, output record
//
// and, when it wants to, any of the optional three by hand:
//
//   extern "C" TIVORA_PLUGIN_EXPORT int tivora_describe_output(const void* output, char* text, size_t size) {...}
//
// Required:
//   int tivora_plugin_abi(void)
//       TIVORA_PLUGIN_ABI. A host refuses a library that answers another value.
//   hvx::IProcessing* tivora_create_processing(uint32_t resourceType)
//       A new processing for the resource type (SNPEMgr::TVRResourceType), or null on failure.
//   void tivora_destroy_processing(hvx::IProcessing* processing)
//       Deletes what tivora_create_processing made (null does nothing).
//   size_t tivora_output_size(void)
//       The size of the output record the host passes to apply; the host zeroes it once.
//
// Optional (a host looks them up and does without them):
//   int tivora_describe_output(const void* output, char* text, size_t size)
//       One line of text, without a line end, describing a frame's output record; NUL-terminated
//       within `size` bytes (cut when longer). 0 when written, anything else when there is
//       nothing to say.
//   int tivora_set_option(hvx::IProcessing* processing, const char* key, const char* value)
//       Called before setup, once for each KEY=VALUE the user gave (tvrtool run --option). 0
//       accepts; anything else refuses the option, and the host stops before setup.
//   size_t tivora_stage_times(hvx::IProcessing* processing, tivora_stage_time_t* stages, size_t capacity)
//       The named stages of the processing's last apply, in order: writes at most `capacity`
//       entries and returns how many it wrote. Names are static text, or live as long as the
//       processing. Times are CLOCK_MONOTONIC nanoseconds, so a host can place each stage inside
//       the apply it timed itself.
//
// Threads: a host calls the functions of one processing from one thread at a time, as it calls
// the processing itself; tivora_plugin_abi, tivora_output_size and tivora_describe_output may be
// called from any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <new>

#include "hvx/IProcessing.h"

// The ABI version of the functions below. It changes when any of their meanings does.
#define TIVORA_PLUGIN_ABI 1

#define TIVORA_PLUGIN_EXPORT __attribute__((visibility("default")))

// One stage of an apply, as tivora_stage_times reports it.
typedef struct tivora_stage_time {
  const char* name;     // "split", "execute", ...
  int64_t start_ns;     // CLOCK_MONOTONIC, when the stage began
  int64_t duration_ns;  // how long it took
} tivora_stage_time_t;

extern "C" {
typedef int (*tivora_plugin_abi_fn)(void);
typedef hvx::IProcessing* (*tivora_create_processing_fn)(uint32_t resourceType);
typedef void (*tivora_destroy_processing_fn)(hvx::IProcessing* processing);
typedef size_t (*tivora_output_size_fn)(void);
typedef int (*tivora_describe_output_fn)(const void* output, char* text, size_t size);
typedef int (*tivora_set_option_fn)(hvx::IProcessing* processing, const char* key, const char* value);
typedef size_t (*tivora_stage_times_fn)(hvx::IProcessing* processing, tivora_stage_time_t* stages, size_t capacity);
}

// Defines the four required functions for `ProcessingClass` (constructed from the resource type)
// and its output record `OutputRecord`. Use it once, in one source file of the plugin library.
#define TIVORA_PLUGIN(ProcessingClass, OutputRecord)                                                 \
  extern "C" TIVORA_PLUGIN_EXPORT int tivora_plugin_abi(void) { return TIVORA_PLUGIN_ABI; }          \
  extern "C" TIVORA_PLUGIN_EXPORT hvx::IProcessing* tivora_create_processing(uint32_t resourceType) { \
    try {                                                                                            \
      return new (std::nothrow) ProcessingClass(resourceType);                                       \
    } catch (...) {                                                                                  \
      return nullptr;                                                                                \
    }                                                                                                \
  }                                                                                                  \
  extern "C" TIVORA_PLUGIN_EXPORT void tivora_destroy_processing(hvx::IProcessing* processing) {     \
    delete processing;                                                                               \
  }                                                                                                  \
  extern "C" TIVORA_PLUGIN_EXPORT size_t tivora_output_size(void) { return sizeof(OutputRecord); }
