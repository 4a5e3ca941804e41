#include "Model.h"

#include <algorithm>
#include <cstring>

namespace snpe_stub::detail {
namespace {

constexpr std::string_view kMagic = "TIVORA-HOST-DLC 1";
constexpr size_t kMaxRank = 8;
constexpr size_t kMaxElements = size_t{1} << 28;

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

const Tensor* Model::input(std::string_view name) const { return findTensor(inputs, name); }
const Tensor* Model::output(std::string_view name) const { return findTensor(outputs, name); }

std::shared_ptr<const Model> parseModel(std::string_view text, std::string& error) {
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
  auto model = std::make_shared<Model>();
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

void compute(Op op, const std::vector<float>& input, std::vector<float>& output) {
  switch (op) {
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
}

}  // namespace snpe_stub::detail
