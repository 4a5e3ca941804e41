// Host model containers: a small text format that names the model's tensors and the one operator
// that computes them.
//
//   TIVORA-HOST-DLC 1                  magic line, exactly
//   version: mean-colour-1.0           model version text (once)
//   input: image 1x224x224x3           name and shape of an input tensor (once or more)
//   output: mean 1x3                   name and shape of an output tensor (once or more)
//   op: channel_mean                   the operator (once)
//
// Lines are "key: value"; blank lines and lines starting with '#' are ignored, a trailing '\r' is
// dropped. Tensor names are made of letters, digits and "_.:/-", unique among all tensors of the
// model. A shape is 1 to 8 positive dimensions joined by 'x' (last one varies fastest), at most
// 2^28 elements. Tensors are 32-bit floats. Operators, on the first input and the first output:
//   copy          copies the elements in order; both tensors hold the same number of elements
//   channel_mean  the mean of each of the 3 channels of an ...xHxWx3 input, into 3 elements
//   none          computes nothing (to measure the runtime's own overhead)
// Anything else (another magic line, a missing or repeated line, an unknown key, a bad shape, a NUL
// byte, more than 1 MiB) is not a container.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace snpe_stub::detail {

struct Tensor {
  std::string name;
  std::vector<size_t> dims;
  size_t elements = 0;
};

enum class Op { Copy, ChannelMean, None };

struct Model {
  std::string version;
  std::vector<Tensor> inputs;
  std::vector<Tensor> outputs;
  Op op = Op::None;

  const Tensor* input(std::string_view name) const;
  const Tensor* output(std::string_view name) const;
};

constexpr size_t kMaxContainerBytes = 1u << 20;

// The model in `text`, or null with the reason in `error`.
std::shared_ptr<const Model> parseModel(std::string_view text, std::string& error);

// Computes `op` from the elements of the first input into those of the first output.
void compute(Op op, const std::vector<float>& input, std::vector<float>& output);

}  // namespace snpe_stub::detail
