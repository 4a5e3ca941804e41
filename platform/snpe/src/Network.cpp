#include <thread>

#include "Layout.h"
#include "Objects.h"
#include "SNPE/SNPE.h"

using namespace snpe_stub::detail;

namespace {

// Finds and checks the buffer of `tensor` in `map`; false with the reason in `error`.
bool bind(const UserBufferMap& map, const Tensor& tensor, const char* role, Binding& binding, std::string& error) {
  std::string what = std::string(role) + " tensor '" + tensor.name + "'";
  void* handle = map.get(tensor.name);
  if (!handle) {
    error = what + " has no user buffer";
    return false;
  }
  const auto* buffer = find<UserBuffer>(handle);
  if (!buffer) {
    error = "the user buffer of " + what + " was deleted";
    return false;
  }
  if (std::string why = checkFit(tensor, buffer->strides, buffer->size); !why.empty()) {
    std::string shape;
    for (size_t dim : tensor.dims) shape += (shape.empty() ? "" : "x") + std::to_string(dim);
    error = what + " (" + shape + "): " + why;
    return false;
  }
  binding = Binding{&tensor, buffer->memory, &buffer->strides};
  return true;
}

class Running {
 public:
  explicit Running(const void* network) : network_(network) { executionBegins(network_); }
  ~Running() { executionEnds(network_); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  const void* network_;
};

}  // namespace

std::optional<snpe_stub::NetworkSettings> snpe_stub::networkSettings(const void* network) {
  const auto* self = find<Network>(network);
  if (!self) return std::nullopt;
  return self->settings;
}

extern "C" Snpe_ErrorCode_t Snpe_SNPE_Delete(Snpe_SNPE_Handle_t snpe) {
  const Snpe_ErrorCode_t result = deleteObject("Snpe_SNPE_Delete", snpe, Kind::Network);
  if (result == SNPE_SUCCESS) forgetNetwork(snpe);
  return result;
}

extern "C" Snpe_ErrorCode_t Snpe_SNPE_ExecuteUserBuffers(Snpe_SNPE_Handle_t snpe, Snpe_UserBufferMap_Handle_t inputs,
                                                         Snpe_UserBufferMap_Handle_t outputs) {
  static constexpr const char* kName = "Snpe_SNPE_ExecuteUserBuffers";
  if (enter(kName, snpe, inputs, outputs)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  const auto* self = find<Network>(snpe);
  if (!self) return fail(kName, "not a network", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  const auto* inputMap = find<UserBufferMap>(inputs);
  const auto* outputMap = find<UserBufferMap>(outputs);
  if (!inputMap || !outputMap) return fail(kName, "not a user-buffer map", SNPE_ERRORCODE_CAPI_BAD_HANDLE);

  const Model& model = *self->model;
  std::vector<Binding> in(model.inputs.size());
  std::vector<Binding> out(self->outputs.size());
  std::string error;
  for (size_t i = 0; i < in.size(); ++i) {
    if (!bind(*inputMap, model.inputs[i], "input", in[i], error)) {
      return fail(kName, error, SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
    }
  }
  for (size_t i = 0; i < out.size(); ++i) {
    if (!bind(*outputMap, self->outputs[i], "output", out[i], error)) {
      return fail(kName, error, SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
    }
  }

  Running running(snpe);
  if (const auto delay = executeDelay(); delay.count() > 0) std::this_thread::sleep_for(delay);
  if (!self->engine->run(in, out, error)) return fail(kName, error, SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  return SNPE_SUCCESS;
}

extern "C" const char* Snpe_SNPE_GetModelVersion(Snpe_SNPE_Handle_t snpe) {
  static constexpr const char* kName = "Snpe_SNPE_GetModelVersion";
  if (enter(kName, snpe)) return nullptr;
  const auto* self = find<Network>(snpe);
  if (!self) return fail(kName, "not a network", nullptr);
  return self->model->version.c_str();
}

extern "C" Snpe_StringList_Handle_t Snpe_SNPE_GetInputTensorNames(Snpe_SNPE_Handle_t snpe) {
  static constexpr const char* kName = "Snpe_SNPE_GetInputTensorNames";
  if (enter(kName, snpe)) return nullptr;
  const auto* self = find<Network>(snpe);
  if (!self) return fail(kName, "not a network", nullptr);
  std::vector<std::string> names;
  for (const Tensor& input : self->model->inputs) names.push_back(input.name);
  return newStringList(std::move(names));
}

extern "C" Snpe_StringList_Handle_t Snpe_SNPE_GetOutputTensorNames(Snpe_SNPE_Handle_t snpe) {
  static constexpr const char* kName = "Snpe_SNPE_GetOutputTensorNames";
  if (enter(kName, snpe)) return nullptr;
  const auto* self = find<Network>(snpe);
  if (!self) return fail(kName, "not a network", nullptr);
  std::vector<std::string> names;
  for (const Tensor& output : self->outputs) names.push_back(output.name);
  return newStringList(std::move(names));
}

extern "C" Snpe_TensorShape_Handle_t Snpe_SNPE_GetInputDimensions(Snpe_SNPE_Handle_t snpe, const char* name) {
  static constexpr const char* kName = "Snpe_SNPE_GetInputDimensions";
  if (enter(kName, snpe, name)) return nullptr;
  const auto* self = find<Network>(snpe);
  if (!self) return fail(kName, "not a network", nullptr);
  if (name == nullptr) return fail(kName, "null name", nullptr);
  const Tensor* input = self->model->input(name);
  if (!input) return fail(kName, std::string("no input tensor named '") + name + "'", nullptr);
  return newTensorShape(input->dims);
}
