#include <algorithm>

#include "Objects.h"
#include "SNPE/SNPEBuilder.h"

using namespace snpe_stub::detail;

namespace {

constexpr const char* kNotBuilder = "not a builder";

// The builder for a setter, or null with the last error set.
Builder* builderOf(const char* function, void* handle) {
  auto* self = find<Builder>(handle);
  if (!self) setLastError(std::string(function) + ": " + kNotBuilder);
  return self;
}

// Enumeration setters: the value must be one of the enumeration's.
template <typename Enum, typename Field>
Snpe_ErrorCode_t setEnum(const char* function, void* builder, Enum value, int last, Field field) {
  if (enter(function, builder, value)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = builderOf(function, builder);
  if (!self) return SNPE_ERRORCODE_CAPI_BAD_HANDLE;
  const int number = static_cast<int>(value);
  if (number < 0 || number > last) {
    return fail(function, "value " + std::to_string(number) + " out of range", SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  }
  self->settings.*field = value;
  return SNPE_SUCCESS;
}

template <typename Field>
Snpe_ErrorCode_t setSwitch(const char* function, void* builder, int on, Field field) {
  if (enter(function, builder, on)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = builderOf(function, builder);
  if (!self) return SNPE_ERRORCODE_CAPI_BAD_HANDLE;
  self->settings.*field = on != 0;
  return SNPE_SUCCESS;
}

}  // namespace

extern "C" Snpe_SNPEBuilder_Handle_t Snpe_SNPEBuilder_Create(Snpe_DlContainer_Handle_t container) {
  static constexpr const char* kName = "Snpe_SNPEBuilder_Create";
  if (enter(kName, container)) return nullptr;
  auto* source = find<Container>(container);
  if (!source) return fail(kName, "not a container", nullptr);
  auto self = std::make_unique<Builder>();
  self->model = source->model;  // shared: the container may be deleted before the build
  self->settings.modelVersion = source->model->version;
  return adopt(std::move(self));
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_Delete(Snpe_SNPEBuilder_Handle_t builder) {
  return deleteObject("Snpe_SNPEBuilder_Delete", builder, Kind::Builder);
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetRuntimeProcessorOrder(Snpe_SNPEBuilder_Handle_t builder,
                                                                      Snpe_RuntimeList_Handle_t runtimes) {
  static constexpr const char* kName = "Snpe_SNPEBuilder_SetRuntimeProcessorOrder";
  if (enter(kName, builder, runtimes)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = builderOf(kName, builder);
  if (!self) return SNPE_ERRORCODE_CAPI_BAD_HANDLE;
  auto* list = find<RuntimeList>(runtimes);
  if (!list) return fail(kName, "not a runtime list", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  self->settings.runtimeOrder = list->runtimes;
  return SNPE_SUCCESS;
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetPerformanceProfile(Snpe_SNPEBuilder_Handle_t builder,
                                                                   Snpe_PerformanceProfile_t profile) {
  return setEnum("Snpe_SNPEBuilder_SetPerformanceProfile", builder, profile,
                 SNPE_PERFORMANCE_PROFILE_EXTREME_POWER_SAVER, &snpe_stub::NetworkSettings::performanceProfile);
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetProfilingLevel(Snpe_SNPEBuilder_Handle_t builder,
                                                               Snpe_ProfilingLevel_t level) {
  return setEnum("Snpe_SNPEBuilder_SetProfilingLevel", builder, level, SNPE_PROFILING_LEVEL_LINTING,
                 &snpe_stub::NetworkSettings::profilingLevel);
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetExecutionPriorityHint(Snpe_SNPEBuilder_Handle_t builder,
                                                                      Snpe_ExecutionPriorityHint_t priority) {
  return setEnum("Snpe_SNPEBuilder_SetExecutionPriorityHint", builder, priority, SNPE_EXECUTION_PRIORITY_NORMAL_HIGH,
                 &snpe_stub::NetworkSettings::executionPriority);
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetDebugMode(Snpe_SNPEBuilder_Handle_t builder, int debug) {
  return setSwitch("Snpe_SNPEBuilder_SetDebugMode", builder, debug, &snpe_stub::NetworkSettings::debugMode);
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetUseUserSuppliedBuffers(Snpe_SNPEBuilder_Handle_t builder, int use) {
  return setSwitch("Snpe_SNPEBuilder_SetUseUserSuppliedBuffers", builder, use,
                   &snpe_stub::NetworkSettings::useUserSuppliedBuffers);
}

// The names are checked against the model when the network is built.
extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetOutputLayers(Snpe_SNPEBuilder_Handle_t builder,
                                                             Snpe_StringList_Handle_t layers) {
  static constexpr const char* kName = "Snpe_SNPEBuilder_SetOutputLayers";
  if (enter(kName, builder, layers)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = builderOf(kName, builder);
  if (!self) return SNPE_ERRORCODE_CAPI_BAD_HANDLE;
  auto* list = find<StringList>(layers);
  if (!list) return fail(kName, "not a string list", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  self->settings.outputLayers = list->strings;
  return SNPE_SUCCESS;
}

extern "C" Snpe_ErrorCode_t Snpe_SNPEBuilder_SetPlatformConfig(Snpe_SNPEBuilder_Handle_t builder,
                                                               Snpe_PlatformConfig_Handle_t config) {
  static constexpr const char* kName = "Snpe_SNPEBuilder_SetPlatformConfig";
  if (enter(kName, builder, config)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = builderOf(kName, builder);
  if (!self) return SNPE_ERRORCODE_CAPI_BAD_HANDLE;
  auto* source = find<PlatformConfig>(config);
  if (!source) return fail(kName, "not a platform configuration", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  self->settings.platformOptions = source->options;
  return SNPE_SUCCESS;
}

// Runs on the first available runtime of the processor order (the CPU when none was given).
extern "C" Snpe_SNPE_Handle_t Snpe_SNPEBuilder_Build(Snpe_SNPEBuilder_Handle_t builder) {
  static constexpr const char* kName = "Snpe_SNPEBuilder_Build";
  if (enter(kName, builder)) return nullptr;
  auto* self = builderOf(kName, builder);
  if (!self) return nullptr;
  auto network = std::make_unique<Network>();
  network->model = self->model;
  network->settings = self->settings;

  std::vector<Snpe_Runtime_t> order = self->settings.runtimeOrder;
  if (order.empty()) order.push_back(SNPE_RUNTIME_CPU);
  const auto chosen = std::find_if(order.begin(), order.end(), runtimeAvailable);
  if (chosen == order.end()) {
    std::string tried;
    for (Snpe_Runtime_t runtime : order) tried += (tried.empty() ? "" : ", ") + std::to_string(runtime);
    return fail(kName, "none of the runtimes " + tried + " is available", nullptr);
  }
  network->settings.runtime = *chosen;

  std::string error;
  network->engine = self->model->build(self->settings.outputLayers, network->outputs, error);
  if (!network->engine) return fail(kName, error, nullptr);
  return adopt(std::move(network));
}
