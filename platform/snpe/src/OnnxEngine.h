// OpenCV DNN behind the ONNX models: it imports the model for every network and runs the network.
// OpenCV's types stay in OnnxEngine.cpp.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Model.h"

namespace snpe_stub::detail {

// What an ONNX model keeps for building its networks.
struct OnnxSource {
  std::shared_ptr<const std::string> bytes;             // the model file
  std::vector<std::string> outputs;                     // the graph's outputs
  std::map<std::string, std::vector<size_t>> declared;  // static shapes the graph declares, in its order
};

// A tensor of the model's dimensions as the runtime shows it (rank 4: N x C x H x W as N x H x W x C).
Tensor shownTensor(const std::string& name, const std::vector<size_t>& modelDims);

// A network computing `layers` (empty: the graph's outputs), run once on zeros to learn the shapes
// of what it produces; null with the engine's reason.
std::unique_ptr<Engine> buildOnnxEngine(const OnnxSource& source, const std::vector<std::string>& layers,
                                        const std::vector<Tensor>& inputs, std::vector<Tensor>& produced,
                                        std::string& error);

}  // namespace snpe_stub::detail
