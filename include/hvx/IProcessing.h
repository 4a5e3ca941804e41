// The host camera framework's interface to a processing. The host calls through this interface
// only, so the order of its operations (its virtual table) is part of the ABI:
//   setup, initialize, apply, abort, finalize, teardown, getProcessingName, destructors.
#pragma once

#include "tvr_export.h"
#include "tvr_types.h"

namespace hvx {

class TVR_EXPORT IProcessing {
 public:
  // Given the create record (tvr_create_param_t): build what the processing needs for its life.
  virtual tvr_err_t setup(const void* createParam) = 0;
  // Given the static record (tvr_static_param_t): prepare for a stream of frames.
  virtual tvr_err_t initialize(const void* staticParam) = 0;
  // One frame: input record (tvr_input_param_t), output record, optional debug record (may be null).
  virtual tvr_err_t apply(const void* input, void* output, void* debug) = 0;
  virtual tvr_err_t abort() = 0;
  // Undo initialize.
  virtual tvr_err_t finalize() = 0;
  // Undo setup.
  virtual tvr_err_t teardown() = 0;
  virtual const char* getProcessingName() = 0;
  virtual ~IProcessing() = default;
};

}  // namespace hvx
