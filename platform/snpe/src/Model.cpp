#include "Model.h"

namespace snpe_stub::detail {

const Tensor* Model::input(std::string_view name) const {
  for (const Tensor& tensor : inputs) {
    if (tensor.name == name) return &tensor;
  }
  return nullptr;
}

std::shared_ptr<const Model> openModel(std::string_view bytes, std::string& error) {
  if (bytes.empty()) {
    error = "empty";
    return nullptr;
  }
  return isTextContainer(bytes) ? parseTextModel(bytes, error) : parseOnnxModel(bytes, error);
}

}  // namespace snpe_stub::detail
