// Random sequences of createSNPE (build or reuse), executeSNPE, deleteSNPE, registerOwner and
// unregisterOwner on random slots, with random failures injected into the NN runtime's stand-in.
// After each sequence everything is deleted and every runtime object created in it must have been
// released: the stand-in's live count is back where it started.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "DeviceDirs.h"
#include "DevicePaths.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPE/SNPEUtil.h"
#include "SNPEMgr.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::SNPEMgr;
using tivora::SNPEParam;

constexpr unsigned int kSlots = 40;  // callers keep slots below this: the manager indexes its locks by it

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "network sequence: %s\n", what);
    std::abort();
  }
}

// Calls that may fail in a sequence: every call of a build and of an execution, and the calls a
// processing makes for its user buffers. Left out: the runtime probe (done once per process: a
// failure would leave the CPU unavailable for the rest of the run) and the deletes (a failed
// delete keeps its object alive by definition).
constexpr std::array<const char*, 20> kFailing = {
    "Snpe_DlContainer_Open",
    "Snpe_RuntimeList_Create",
    "Snpe_RuntimeList_Add",
    "Snpe_StringList_Create",
    "Snpe_StringList_Append",
    "Snpe_PlatformConfig_Create",
    "Snpe_PlatformConfig_SetPlatformOptions",
    "Snpe_SNPEBuilder_Create",
    "Snpe_SNPEBuilder_SetRuntimeProcessorOrder",
    "Snpe_SNPEBuilder_SetPerformanceProfile",
    "Snpe_SNPEBuilder_SetProfilingLevel",
    "Snpe_SNPEBuilder_SetExecutionPriorityHint",
    "Snpe_SNPEBuilder_SetDebugMode",
    "Snpe_SNPEBuilder_SetOutputLayers",
    "Snpe_SNPEBuilder_SetUseUserSuppliedBuffers",
    "Snpe_SNPEBuilder_SetPlatformConfig",
    "Snpe_SNPEBuilder_Build",
    "Snpe_SNPE_ExecuteUserBuffers",
    "Snpe_Util_CreateUserBuffer",
    "Snpe_UserBufferMap_Create",
};

// Model files: two that build (one input "in" and one output "out" of 4 floats each), one that is
// no container and one that does not exist.
std::array<std::string, 4> gModels;

SNPEParam paramOf(FuzzedDataProvider& in) {
  SNPEParam param;
  std::snprintf(param.dlc_path, sizeof param.dlc_path, "%s",
                gModels[in.ConsumeIntegralInRange<size_t>(0, gModels.size() - 1)].c_str());
  // The manager indexes its table of five processors by the runtime: callers keep it below 5.
  param.runtime = static_cast<tvr_runtime_t>(in.ConsumeBool() ? 0 : in.ConsumeIntegralInRange<int32_t>(0, 4));
  param.profile = static_cast<tvr_perf_profile_t>(in.ConsumeIntegralInRange<int32_t>(-1, 11));
  param.profiling_level = static_cast<tvr_profiling_level_t>(in.ConsumeIntegralInRange<int32_t>(-1, 4));
  param.priority = static_cast<tvr_exec_priority_t>(in.ConsumeIntegralInRange<int32_t>(-1, 3));
  param.cpu_fallback_mode = in.ConsumeBool();
  param.use_user_buffers = in.ConsumeBool();
  param.debug_mode = in.ConsumeBool();
  return param;
}

std::vector<std::string> outputLayersOf(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: return {};
    case 1: return {"out"};
    case 2: return {"out", "out"};
    default: return {"no_such_output"};
  }
}

// User buffers of one slot, as a processing makes them: 4 floats in, 4 floats out.
struct SlotBuffers {
  std::array<float, 4> input{}, output{};
  Snpe_UserBufferEncoding_Handle_t encoding = nullptr;
  bool attached = false;
};

void attach(SNPEMgr& manager, unsigned int slot, SlotBuffers& buffers) {
  if (buffers.attached) return;
  buffers.attached = true;
  buffers.encoding = Snpe_UserBufferEncodingFloat_Create();
  const size_t stride = sizeof(float);
  Snpe_TensorShape_Handle_t strides = Snpe_TensorShape_CreateDimsSize(&stride, 1);
  const auto add = [&](float* memory, const char* name, Snpe_UserBufferMap_Handle_t& map,
                       std::vector<Snpe_IUserBuffer_Handle_t>& list) {
    Snpe_IUserBuffer_Handle_t buffer = Snpe_Util_CreateUserBuffer(memory, 4 * sizeof(float), strides, buffers.encoding);
    if (map == nullptr) map = Snpe_UserBufferMap_Create();
    if (buffer == nullptr) return;
    list.push_back(buffer);
    if (map != nullptr) Snpe_UserBufferMap_Add(map, name, buffer);
  };
  add(buffers.input.data(), "in", manager.mInputMap[slot], manager.mInputBuffers[slot]);
  add(buffers.output.data(), "out", manager.mOutputMap[slot], manager.mOutputBuffers[slot]);
  Snpe_TensorShape_Delete(strides);
}

void detach(SNPEMgr& manager, unsigned int slot, SlotBuffers& buffers) {
  if (!buffers.attached) return;
  for (auto* list : {&manager.mInputBuffers[slot], &manager.mOutputBuffers[slot]}) {
    for (Snpe_IUserBuffer_Handle_t buffer : *list) Snpe_IUserBuffer_Delete(buffer);
    list->clear();
  }
  for (auto* map : {&manager.mInputMap[slot], &manager.mOutputMap[slot]}) {
    if (*map != nullptr) Snpe_UserBufferMap_Delete(*map);
    *map = nullptr;
  }
  if (buffers.encoding != nullptr) Snpe_UserBufferEncodingFloat_Delete(buffers.encoding);
  buffers = SlotBuffers{};
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const std::string dir = tivora::paths::kVendorCameraDir;
  tivora::fuzz::writeFileOrDie(dir + "/VEXA_TVR.dat", "TivoraLogLevel=V\n");
  for (size_t i = 0; i < 2; ++i) {
    gModels[i] = dir + "/copy" + std::to_string(i) + ".dlc";
    tivora::fuzz::writeFileOrDie(gModels[i], "TIVORA-HOST-DLC 1\nversion: copy-" + std::to_string(i) +
                                                 "\ninput: in 4\noutput: out 4\nop: copy\n");
  }
  gModels[2] = dir + "/not_a_container.dlc";
  tivora::fuzz::writeFileOrDie(gModels[2], "TIVORA-HOST-DLC 2\n");
  gModels[3] = dir + "/missing.dlc";
  snpe_stub::reset();
  snpe_stub::setJournaling(false);  // the journal would grow for the whole run
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SNPEMgr& manager = *SNPEMgr::getInstance();
  FuzzedDataProvider in(data, size);
  const int liveBefore = snpe_stub::liveCount();
  std::array<SlotBuffers, kSlots> buffers;
  std::vector<std::pair<unsigned int, unsigned long>> owners;

  // Mostly a few slots, so that operations meet on them; sometimes any.
  const auto slotOf = [&in] {
    return in.ConsumeBool() ? in.ConsumeIntegralInRange<unsigned int>(0, 3)
                            : in.ConsumeIntegralInRange<unsigned int>(0, kSlots - 1);
  };
  for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
    switch (in.ConsumeIntegralInRange<int>(0, 8)) {
      case 0: {
        const unsigned int slot = slotOf();
        SNPEParam param = paramOf(in);
        std::vector<std::string> layers = outputLayersOf(in);
        const tvr_err_t status = manager.createSNPE(slot, param, layers);
        require(status == TVR_OK || status == 2 || status == 4 || status == 5 || status == 8, "create status");
        require((status == TVR_OK) == (manager.getModelVersion(slot) != ""), "a slot holds a network exactly after a build");
        break;
      }
      case 1: manager.deleteSNPE(slotOf()); break;
      case 2: {
        const tvr_err_t status = manager.execute(slotOf());
        require(status == TVR_OK || status == 1 || status == 7, "execute status");
        break;
      }
      case 3: {
        // Slots beyond the last are refused by the owner bookkeeping, so any number is fair here.
        const unsigned int slot = in.ConsumeIntegralInRange<unsigned int>(0, kSlots + 2);
        const unsigned long owner = in.ConsumeIntegralInRange<unsigned long>(0, 3);
        manager.registerOwner(slot, owner);
        owners.emplace_back(slot, owner);
        break;
      }
      case 4: manager.unregisterOwner(in.ConsumeIntegralInRange<unsigned int>(0, kSlots + 2),
                                      in.ConsumeIntegralInRange<unsigned long>(0, 3));
        break;
      case 5: {
        const unsigned int slot = slotOf();
        attach(manager, slot, buffers[slot]);
        break;
      }
      case 6: {
        const unsigned int slot = slotOf();
        detach(manager, slot, buffers[slot]);
        break;
      }
      case 7: {
        const int times = in.ConsumeIntegralInRange<int>(1, 3);
        snpe_stub::failCall(kFailing[in.ConsumeIntegralInRange<size_t>(0, kFailing.size() - 1)], times);
        break;
      }
      default: {
        const unsigned int slot = slotOf();
        if (buffers[slot].attached && manager.mInputMap[slot] != nullptr &&
            Snpe_UserBufferMap_Size(manager.mInputMap[slot]) > 0) {
          require(manager.getInputBufferName(slot, 0) == "in", "input buffer name");
        }
        break;
      }
    }
  }

  // Everything made in the sequence goes again; then nothing of it may be alive.
  for (const char* name : kFailing) snpe_stub::failCall(name, 0);
  for (unsigned int slot = 0; slot < kSlots; ++slot) {
    manager.deleteSNPE(slot);
    detach(manager, slot, buffers[slot]);
  }
  for (const auto& [slot, owner] : owners) manager.unregisterOwner(slot, owner);
  require(snpe_stub::liveCount() == liveBefore, "every object created in the sequence was released");
  return 0;
}
