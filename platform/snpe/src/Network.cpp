#include <cstdint>
#include <cstring>
#include <thread>

#include "Objects.h"
#include "SNPE/SNPE.h"

using namespace snpe_stub::detail;

namespace {

// One tensor of the model and the user buffer that holds it.
struct Binding {
  const Tensor* tensor;
  const UserBuffer* buffer;
};

// Calls f(byteOffset) for every element of a tensor, in order (last dimension fastest).
template <typename F>
void forEachElement(const std::vector<size_t>& dims, const std::vector<size_t>& strides, F f) {
  std::vector<size_t> index(dims.size(), 0);
  size_t offset = 0;
  while (true) {
    f(offset);
    bool stepped = false;
    for (size_t d = dims.size(); d-- > 0 && !stepped;) {
      if (++index[d] < dims[d]) {
        offset += strides[d];
        stepped = true;
      } else {
        offset -= (dims[d] - 1) * strides[d];
        index[d] = 0;
      }
    }
    if (!stepped) return;
  }
}

std::vector<float> gather(const Binding& from) {
  std::vector<float> values;
  values.reserve(from.tensor->elements);
  forEachElement(from.tensor->dims, from.buffer->strides, [&](size_t offset) {
    float value;
    std::memcpy(&value, from.buffer->memory + offset, sizeof value);
    values.push_back(value);
  });
  return values;
}

void scatter(const std::vector<float>& values, const Binding& to) {
  size_t i = 0;
  forEachElement(to.tensor->dims, to.buffer->strides,
                 [&](size_t offset) { std::memcpy(to.buffer->memory + offset, &values[i++], sizeof(float)); });
}

// Bytes from the first to past the last element; SIZE_MAX when that does not fit in size_t.
size_t extent(const std::vector<size_t>& dims, const std::vector<size_t>& strides, size_t elementSize) {
  size_t bytes = elementSize;
  for (size_t d = 0; d < dims.size(); ++d) {
    const size_t steps = dims[d] - 1;
    if (steps != 0 && strides[d] > (SIZE_MAX - bytes) / steps) return SIZE_MAX;
    bytes += steps * strides[d];
  }
  return bytes;
}

// Finds and checks the buffer of `tensor` in `map`; false with the reason in `error`.
bool bind(const UserBufferMap& map, const Tensor& tensor, const char* role, Binding& binding, std::string& error) {
  const std::string what = std::string(role) + " tensor '" + tensor.name + "'";
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
  if (buffer->strides.size() != tensor.dims.size()) {
    error = "the user buffer of " + what + " has " + std::to_string(buffer->strides.size()) + " strides for " +
            std::to_string(tensor.dims.size()) + " dimensions";
    return false;
  }
  const size_t needed = extent(tensor.dims, buffer->strides, buffer->elementSize);
  if (needed > buffer->size) {
    error = "the user buffer of " + what + " holds " + std::to_string(buffer->size) + " bytes, the tensor needs " +
            (needed == SIZE_MAX ? std::string("more") : std::to_string(needed));
    return false;
  }
  binding = Binding{&tensor, buffer};
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
  std::string error;
  for (size_t i = 0; i < model.inputs.size(); ++i) {
    if (!bind(*inputMap, model.inputs[i], "input", in[i], error)) {
      return fail(kName, error, SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
    }
  }
  const Binding* firstOutput = nullptr;
  std::vector<Binding> out(self->outputs.size());
  for (size_t i = 0; i < self->outputs.size(); ++i) {
    if (!bind(*outputMap, *self->outputs[i], "output", out[i], error)) {
      return fail(kName, error, SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
    }
    if (self->outputs[i] == &model.outputs.front()) firstOutput = &out[i];
  }

  Running running(snpe);
  if (const auto delay = executeDelay(); delay.count() > 0) std::this_thread::sleep_for(delay);
  if (model.op == Op::None) return SNPE_SUCCESS;
  std::vector<float> result(model.outputs.front().elements);
  compute(model.op, gather(in.front()), result);
  // An operator's result is written only when the network produces the model's first output.
  if (firstOutput) scatter(result, *firstOutput);
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
  for (const Tensor* output : self->outputs) names.push_back(output->name);
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
