// Host model containers: a small text file that names the model's tensors and the one operator
// that computes them (the format is described in README.md).
//
//   TIVORA-HOST-DLC 1                  magic line, exactly
//   version: mean-colour-1.0           model version text (once)
//   input: image 1x224x224x3           name and shape of an input tensor (once or more)
//   output: mean 1x3                   name and shape of an output tensor (once or more)
//   op: channel_mean                   the operator (once)
//
// Operators work on the first input and the first output:
//   copy          copies the elements in order; both tensors hold the same number of elements
//   channel_mean  the mean of each of the 3 channels of an ...xHxWx3 input, into 3 elements
//   none          computes nothing (to measure the runtime's own overhead)
#include <algorithm>
#include <cstring>

#include "Layout.h"
#include "Model.h"

namespace snpe_stub::detail {
namespace {

constexpr std::string_view kMagic = "TIVORA-HOST-DLC 1";
constexpr size_t kMaxRank = 8;

enum class Op { Copy, ChannelMean, None };

class TextModel : public Model {
 public:
  std::unique_ptr<Engine> build(const std::vector<std::string>& layers, std::vector<Tensor>& produced,
                                std::string& error) const override;
  const Tensor* output(std::string_view name) const;

  std::vector<Tensor> outputs;
  Op op = Op::None;
};

// The operator on the first input; its result goes to the model's first output when the network
// produces it.
class TextEngine : public Engine {
 public:
  TextEngine(Op op, std::string firstOutput, size_t resultSize)
      : op_(op), firstOutput_(std::move(firstOutput)), result_(resultSize) {}
  bool run(const std::vector<Binding>& inputs, const std::vector<Binding>& outputs, std::string& error) override;

 private:
  Op op_;
  std::string firstOutput_;
  std::vector<float> input_;
  std::vector<float> result_;
};

std::string_view trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

bool validName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::strchr("_.:/-", c) != nullptr;
  });
}

// "1x224x224x3" -> dims and element count; false when malformed.
bool parseShape(std::string_view text, Tensor& tensor) {
  tensor.dims.clear();
  tensor.elements = 1;
  while (true) {
    const auto end = std::min(text.find('x'), text.size());
    const std::string_view digits = text.substr(0, end);
    if (digits.empty() || digits.size() > 9 || tensor.dims.size() == kMaxRank) return false;
    size_t dim = 0;
    for (char c : digits) {
      if (c < '0' || c > '9') return false;
      dim = dim * 10 + static_cast<size_t>(c - '0');
    }
    if (dim == 0 || dim > kMaxElements / tensor.elements) return false;
    tensor.elements *= dim;
    tensor.dims.push_back(dim);
    if (end == text.size()) return true;
    text.remove_prefix(end + 1);
  }
}

// "name 1x2x3" -> tensor; false with the reason in `error`.
bool parseTensor(std::string_view value, Tensor& tensor, std::string& error) {
  const auto space = value.find_first_of(" \t");
  if (space == std::string_view::npos) {
    error = "a tensor needs a name and a shape";
    return false;
  }
  tensor.name = std::string(value.substr(0, space));
  const std::string_view shape = trim(value.substr(space));
  if (!validName(tensor.name)) {
    error = "bad tensor name '" + tensor.name + "'";
    return false;
  }
  if (!parseShape(shape, tensor)) {
    error = "bad shape '" + std::string(shape) + "'";
    return false;
  }
  return true;
}

const Tensor* findTensor(const std::vector<Tensor>& tensors, std::string_view name) {
  for (const Tensor& t : tensors) {
    if (t.name == name) return &t;
  }
  return nullptr;
}

}  // namespace

const Tensor* TextModel::output(std::string_view name) const { return findTensor(outputs, name); }

// The magic line without its version number: a container of another version is still recognised,
// and refused as one.
bool isTextContainer(std::string_view bytes) {
  const std::string_view prefix = kMagic.substr(0, kMagic.rfind(' '));
  return bytes.substr(0, prefix.size()) == prefix;
}

std::shared_ptr<const Model> parseTextModel(std::string_view text, std::string& error) {
  if (text.empty()) {
    error = "empty";
    return nullptr;
  }
  if (text.size() > kMaxContainerBytes) {
    error = "larger than a host container can be";
    return nullptr;
  }
  if (text.find('\0') != std::string_view::npos) {
    error = "not a host model container (binary data)";
    return nullptr;
  }
  auto model = std::make_shared<TextModel>();
  bool sawVersion = false;
  bool sawOp = false;
  size_t number = 0;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++number;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const std::string where = "line " + std::to_string(number) + ": ";
    if (number == 1) {
      if (line != kMagic) {
        error = "not a host model container (no '" + std::string(kMagic) + "' line)";
        return nullptr;
      }
      continue;
    }
    line = trim(line);
    if (line.empty() || line.front() == '#') continue;
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) {
      error = where + "expected 'key: value'";
      return nullptr;
    }
    const std::string_view key = trim(line.substr(0, colon));
    const std::string_view value = trim(line.substr(colon + 1));
    if (key == "version") {
      if (sawVersion || value.empty()) {
        error = where + (sawVersion ? "second version" : "empty version");
        return nullptr;
      }
      model->version = std::string(value);
      sawVersion = true;
    } else if (key == "input" || key == "output") {
      Tensor tensor;
      if (!parseTensor(value, tensor, error)) {
        error = where + error;
        return nullptr;
      }
      if (model->input(tensor.name) || model->output(tensor.name)) {
        error = where + "second tensor named '" + tensor.name + "'";
        return nullptr;
      }
      (key == "input" ? model->inputs : model->outputs).push_back(std::move(tensor));
    } else if (key == "op") {
      if (sawOp) {
        error = where + "second op";
        return nullptr;
      }
      if (value == "copy") {
        model->op = Op::Copy;
      } else if (value == "channel_mean") {
        model->op = Op::ChannelMean;
      } else if (value == "none") {
        model->op = Op::None;
      } else {
        error = where + "unknown op '" + std::string(value) + "'";
        return nullptr;
      }
      sawOp = true;
    } else {
      error = where + "unknown key '" + std::string(key) + "'";
      return nullptr;
    }
  }
  if (!sawVersion || !sawOp || model->inputs.empty() || model->outputs.empty()) {
    error = std::string("truncated: no ") +
            (!sawVersion              ? "version"
             : model->inputs.empty()  ? "input"
             : model->outputs.empty() ? "output"
                                      : "op") +
            " line";
    return nullptr;
  }
  const Tensor& in = model->inputs.front();
  const Tensor& out = model->outputs.front();
  if (model->op == Op::Copy && in.elements != out.elements) {
    error = "copy needs as many output elements as input elements";
    return nullptr;
  }
  if (model->op == Op::ChannelMean && (in.dims.back() != 3 || out.elements != 3)) {
    error = "channel_mean needs an input of 3 channels and an output of 3 elements";
    return nullptr;
  }
  return model;
}

std::unique_ptr<Engine> TextModel::build(const std::vector<std::string>& layers, std::vector<Tensor>& produced,
                                         std::string& error) const {
  produced.clear();
  for (const std::string& layer : layers) {
    const Tensor* tensor = output(layer);
    if (!tensor) {
      error = "'" + layer + "' is not an output of model " + version;
      return nullptr;
    }
    const bool seen = std::any_of(produced.begin(), produced.end(), [&](const Tensor& t) { return t.name == layer; });
    if (!seen) produced.push_back(*tensor);
  }
  if (produced.empty()) produced = outputs;
  return std::make_unique<TextEngine>(op, outputs.front().name, outputs.front().elements);
}

bool TextEngine::run(const std::vector<Binding>& inputs, const std::vector<Binding>& outputs, std::string&) {
  if (op_ == Op::None) return true;
  input_.resize(inputs.front().tensor->elements);
  gather(inputs.front(), input_.data());
  const std::vector<float>& input = input_;
  std::vector<float>& output = result_;
  switch (op_) {
    case Op::Copy:
      std::copy(input.begin(), input.end(), output.begin());
      break;
    case Op::ChannelMean: {
      double sums[3] = {0.0, 0.0, 0.0};
      for (size_t i = 0; i < input.size(); ++i) sums[i % 3] += static_cast<double>(input[i]);
      const double pixels = static_cast<double>(input.size() / 3);
      for (size_t c = 0; c < 3; ++c) output[c] = static_cast<float>(sums[c] / pixels);
      break;
    }
    case Op::None:
      break;
  }
  for (const Binding& out : outputs) {
    if (out.tensor->name == firstOutput_) scatter(result_.data(), out);
  }
  return true;
}

}  // namespace snpe_stub::detail
