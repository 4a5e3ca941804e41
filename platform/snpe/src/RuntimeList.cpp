#include "DlSystem/RuntimeList.h"

#include <algorithm>

#include "Objects.h"

using namespace snpe_stub::detail;

namespace {

bool isRuntime(Snpe_Runtime_t runtime) {
  switch (runtime) {
    case SNPE_RUNTIME_CPU:
    case SNPE_RUNTIME_GPU:
    case SNPE_RUNTIME_DSP:
    case SNPE_RUNTIME_GPU_FLOAT16:
    case SNPE_RUNTIME_AIP_FIXED_TF:
      return true;
    case SNPE_RUNTIME_UNSET:
      break;
  }
  return false;
}

}  // namespace

extern "C" Snpe_RuntimeList_Handle_t Snpe_RuntimeList_Create(void) {
  if (enter("Snpe_RuntimeList_Create")) return nullptr;
  return adopt(std::make_unique<RuntimeList>());
}

extern "C" Snpe_ErrorCode_t Snpe_RuntimeList_Delete(Snpe_RuntimeList_Handle_t list) {
  return deleteObject("Snpe_RuntimeList_Delete", list, Kind::RuntimeList);
}

// A runtime already in the list keeps its place: adding it again changes nothing.
extern "C" Snpe_ErrorCode_t Snpe_RuntimeList_Add(Snpe_RuntimeList_Handle_t list, Snpe_Runtime_t runtime) {
  static constexpr const char* kName = "Snpe_RuntimeList_Add";
  if (enter(kName, list, runtime)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = find<RuntimeList>(list);
  if (!self) return fail(kName, "not a runtime list", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  if (!isRuntime(runtime)) {
    return fail(kName, "no runtime " + std::to_string(static_cast<int>(runtime)), SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  }
  auto& runtimes = self->runtimes;
  if (std::find(runtimes.begin(), runtimes.end(), runtime) == runtimes.end()) runtimes.push_back(runtime);
  return SNPE_SUCCESS;
}

extern "C" size_t Snpe_RuntimeList_Size(Snpe_RuntimeList_Handle_t list) {
  static constexpr const char* kName = "Snpe_RuntimeList_Size";
  if (enter(kName, list)) return 0;
  auto* self = find<RuntimeList>(list);
  if (!self) return fail(kName, "not a runtime list", size_t{0});
  return self->runtimes.size();
}

extern "C" Snpe_Runtime_t Snpe_RuntimeList_GetRuntime(Snpe_RuntimeList_Handle_t list, int index) {
  static constexpr const char* kName = "Snpe_RuntimeList_GetRuntime";
  if (enter(kName, list, index)) return SNPE_RUNTIME_UNSET;
  auto* self = find<RuntimeList>(list);
  if (!self) return fail(kName, "not a runtime list", SNPE_RUNTIME_UNSET);
  if (index < 0 || static_cast<size_t>(index) >= self->runtimes.size()) {
    return fail(kName, "index " + std::to_string(index) + " out of range", SNPE_RUNTIME_UNSET);
  }
  return self->runtimes[static_cast<size_t>(index)];
}
