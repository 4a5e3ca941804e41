// What a container holds: a model that names its tensors and can build networks that compute them.
// Two kinds, recognised by content: the host's text containers (TextModel.cpp, a few operators for
// tests and for builds without OpenCV) and ONNX models (OnnxModel.cpp, executed by OpenCV DNN).
//
// Tensors are shown the way the device runtime shows them: dims as a user buffer holds them, the
// last varying fastest. An ONNX tensor of rank 4 (N x C x H x W in the model) is shown as
// N x H x W x C; its Tensor says so with `channelsLast`, and the engine gets it back in its own order.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace snpe_stub::detail {

struct Tensor {
  std::string name;
  std::vector<size_t> dims;  // as the runtime shows them
  size_t elements = 0;
  bool channelsLast = false;  // shown N x H x W x C, computed N x C x H x W
};

// A tensor of a network and the caller memory that holds it, checked to fit (see Layout.h).
struct Binding {
  const Tensor* tensor = nullptr;
  unsigned char* memory = nullptr;
  const std::vector<size_t>* strides = nullptr;  // bytes, one per dimension of tensor->dims
};

// The computation of one built network. Not thread-safe: a network runs on one thread at a time.
class Engine {
 public:
  virtual ~Engine() = default;
  // Reads `inputs` (the model's, in order), writes `outputs` (the network's, in order); false with
  // the reason in `error`.
  virtual bool run(const std::vector<Binding>& inputs, const std::vector<Binding>& outputs, std::string& error) = 0;
};

class Model {
 public:
  virtual ~Model() = default;

  // A network's engine that produces `layers` (empty: the model's outputs); the tensors it produces,
  // in order, go to `produced`. Null with the reason in `error`.
  virtual std::unique_ptr<Engine> build(const std::vector<std::string>& layers, std::vector<Tensor>& produced,
                                        std::string& error) const = 0;

  const Tensor* input(std::string_view name) const;

  std::string version;
  std::vector<Tensor> inputs;
};

// Largest model file, largest text container, and largest number of elements of one tensor.
constexpr size_t kMaxModelBytes = size_t{1} << 30;
constexpr size_t kMaxContainerBytes = size_t{1} << 20;
constexpr size_t kMaxElements = size_t{1} << 28;

// The model in `bytes`, of whichever kind they are; null with the reason in `error`.
std::shared_ptr<const Model> openModel(std::string_view bytes, std::string& error);

// Each kind on its own. isTextContainer looks at the first line only.
bool isTextContainer(std::string_view bytes);
std::shared_ptr<const Model> parseTextModel(std::string_view text, std::string& error);
std::shared_ptr<const Model> parseOnnxModel(std::string_view bytes, std::string& error);

}  // namespace snpe_stub::detail
