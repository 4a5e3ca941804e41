// Loading and building one network: the runtime probe, the container, the builder's settings in
// their fixed order, and the timing of both stages.
#include <cstdint>
#include <cstring>
#include <fstream>

#include "DlSystem/PlatformConfig.h"
#include "DlSystem/RuntimeList.h"
#include "DlSystem/StringList.h"
#include "SNPE/SNPEBuilder.h"
#include "SNPE/SNPEUtil.h"
#include "SNPEMgr.h"
#include "TivoraUtil.h"
#include "common/BootClock.h"
#include "log/Log.h"

namespace tivora {

namespace {

constexpr char kTag[] = "TivoraBase";
constexpr char kFunction[] = "createSNPEInternal";

// A switch as the runtime's int: the host's byte, read without assuming it holds 0 or 1.
int switchValue(const bool& flag) {
  unsigned char byte = 0;
  std::memcpy(&byte, &flag, 1);
  return byte != 0 ? 1 : 0;
}

// Runs the builder's setters in their required order; false at the first that fails.
bool configureBuilder(Snpe_SNPEBuilder_Handle_t builder, const SNPEParam& param, Snpe_RuntimeList_Handle_t runtimes,
                      Snpe_StringList_Handle_t outputs, Snpe_PlatformConfig_Handle_t config) {
  return Snpe_SNPEBuilder_SetRuntimeProcessorOrder(builder, runtimes) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetPerformanceProfile(builder, convert(param.profile)) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetProfilingLevel(builder, convert(param.profiling_level)) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetExecutionPriorityHint(builder, convert(param.priority)) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetDebugMode(builder, switchValue(param.debug_mode)) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetOutputLayers(builder, outputs) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetUseUserSuppliedBuffers(builder, switchValue(param.use_user_buffers)) == SNPE_SUCCESS &&
         Snpe_SNPEBuilder_SetPlatformConfig(builder, config) == SNPE_SUCCESS;
}

}  // namespace

Snpe_DlContainer_Handle_t loadContainer(std::string path) { return Snpe_DlContainer_Open(path.c_str()); }

Snpe_DlContainer_Handle_t loadContainer(const unsigned char* buffer, unsigned long size) {
  return Snpe_DlContainer_OpenBuffer(buffer, size);
}

bool SNPEMgr::checkRuntime(tvr_runtime_t runtime) {
  const auto index = static_cast<uint32_t>(runtime);
  if (index >= 5) return false;  // no such processor, nothing to ask the runtime

  std::lock_guard<std::mutex> guard(mSingleLock);
  const int32_t state = mRuntimeState[index];
  if (state == 0) return true;
  if (state != 2) return false;

  const int64_t start = bootTimeNs();
  const int available =
      Snpe_Util_IsRuntimeAvailableCheckOption(convert(runtime), SNPE_RUNTIME_CHECK_OPTION_NORMAL_CHECK);
  TVR_LOG(processLogger(), INFO, "TivoraUtil", "checkRuntime", "checkRuntime(%d) : %lld", runtime,
          static_cast<long long>(bootTimeNs() - start));
  if (available != 0) {
    mRuntimeState[index] = 0;
    return true;
  }
  mRuntimeState[index] = 1;
  TVR_LOG(processLogger(), ERROR, "TivoraUtil", "checkRuntime", "Runtime(%d) is not available: %s", runtime,
          Snpe_ErrorCode_GetLastErrorString());
  return false;
}

Snpe_SNPE_Handle_t SNPEMgr::createSNPEInternal(SNPEParam& param, std::vector<std::string>& outputLayers,
                                               tvr_err_t& err) {
  TivoraLogger* logger = processLogger();

  // Load stage.
  const int64_t loadStart = bootTimeNs();
  Snpe_DlContainer_Handle_t container = nullptr;
  if (err == TVR_OK) {
    if (!checkRuntime(param.runtime)) {
      TVR_LOG(logger, ERROR, kTag, kFunction, "Runtime(%d) is not available", param.runtime);
      err = TVR_ERR_RUNTIME_UNAVAILABLE;
    } else if (!std::ifstream(param.dlc_path).is_open()) {
      TVR_LOG(logger, ERROR, kTag, kFunction, "DLC file(%s) is invalid", param.dlc_path);
      err = TVR_ERR_MODEL_READ;
    } else if ((container = loadContainer(std::string(param.dlc_path))) == nullptr) {
      TVR_LOG(logger, ERROR, kTag, kFunction, "Container open failed");
      err = TVR_ERR_CONTAINER_OPEN;
    }
  }
  TVR_LOG(logger, INFO, kTag, kFunction, "createSNPE.loadContainer : %lld",
          static_cast<long long>(bootTimeNs() - loadStart));

  // Build stage. Every object made here is released before it ends, in a fixed order.
  const int64_t buildStart = bootTimeNs();
  Snpe_SNPE_Handle_t network = nullptr;
  if (err == TVR_OK) {
    Snpe_RuntimeList_Handle_t runtimes = Snpe_RuntimeList_Create();
    Snpe_RuntimeList_Add(runtimes, convert(param.runtime));
    if (switchValue(param.cpu_fallback_mode) != 0) Snpe_RuntimeList_Add(runtimes, convert(TVR_RUNTIME_CPU));

    Snpe_StringList_Handle_t outputs = Snpe_StringList_Create();
    for (const std::string& layer : outputLayers) Snpe_StringList_Append(outputs, layer.c_str());

    Snpe_PlatformConfig_Handle_t config = Snpe_PlatformConfig_Create();
    Snpe_PlatformConfig_SetPlatformOptions(config, "unsignedPD:OFF");  // result deliberately unused

    Snpe_SNPEBuilder_Handle_t builder = Snpe_SNPEBuilder_Create(container);
    if (builder != nullptr && configureBuilder(builder, param, runtimes, outputs, config)) {
      network = Snpe_SNPEBuilder_Build(builder);
    }

    Snpe_RuntimeList_Delete(runtimes);
    Snpe_StringList_Delete(outputs);
    Snpe_PlatformConfig_Delete(config);
    Snpe_SNPEBuilder_Delete(builder);
    if (network == nullptr) {
      // Only the builder's value is printed; it has been released already.
      TVR_LOG(logger, ERROR, kTag, kFunction, "SNPE instance(builder(%p), SNPE tmp(%p)) creation failed(%s)", builder,
              network, Snpe_ErrorCode_GetLastErrorString());
      err = TVR_ERR_BUILD;
    }
  }
  Snpe_DlContainer_Delete(container);
  TVR_LOG(logger, INFO, kTag, kFunction, "createSNPE.build : %lld", static_cast<long long>(bootTimeNs() - buildStart));
  return network;
}

}  // namespace tivora
