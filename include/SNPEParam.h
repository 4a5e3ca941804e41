// How one network is to be built: model container, processor, performance settings and builder
// switches. The network manager keeps one per slot beside the network built from it and reuses the
// network when a new request compares equal.
#pragma once

#include "tvr_export.h"
#include "tvr_types.h"

namespace tivora {

// A plain value: owns no memory (the path is inline), copied by assignment.
class TVR_EXPORT SNPEParam {
 public:
  char dlc_path[256];     // model container path, NUL-terminated
  tvr_runtime_t runtime;  // processor to run on
  tvr_perf_profile_t profile;
  tvr_profiling_level_t profiling_level;  // always off when filled from a create record
  tvr_exec_priority_t priority;
  bool cpu_fallback_mode;  // the CPU follows `runtime` in the processor order
  bool use_user_buffers;
  bool debug_mode;

  // An empty record: empty path, every field zero.
  SNPEParam();

  // Network `index` of a create record: its path (`index` must be below 5; it is not checked),
  // runtime, profile, priority and the three switches; profiling off.
  SNPEParam(const tvr_create_param_t* param, unsigned int index);

  SNPEParam(const SNPEParam& other) = default;
  SNPEParam& operator=(const SNPEParam& other);

  // Field by field, exactly: the paths as strings (bytes after the NUL do not count), then each
  // setting and switch byte (so switch bytes 1 and 2 differ).
  bool operator==(const SNPEParam& other) const;
};

}  // namespace tivora
