// A build without OpenCV DNN (the arm64 build, say) opens text containers only.
#include "Model.h"

namespace snpe_stub::detail {

std::shared_ptr<const Model> parseOnnxModel(std::string_view, std::string& error) {
  error = "not a host model container (no 'TIVORA-HOST-DLC 1' line); this build of the runtime reads no ONNX models";
  return nullptr;
}

}  // namespace snpe_stub::detail
