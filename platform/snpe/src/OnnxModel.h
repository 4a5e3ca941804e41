// An ONNX model as the runtime shows it (OnnxModel.cpp), and the isolated first try of the engine's
// work on it (OnnxProbe.cpp).
#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Model.h"
#include "OnnxEngine.h"

namespace snpe_stub::detail {

class OnnxModel : public Model {
 public:
  std::unique_ptr<Engine> build(const std::vector<std::string>& layers, std::vector<Tensor>& produced,
                                std::string& error) const override;

  OnnxSource source;
  std::set<std::string> computed;  // every tensor a node writes: what an output layer may name
};

// What ONNX's protobuf classes tell of the model, checked against what the runtime can show; the
// engine is not involved. Null with the reason.
std::shared_ptr<OnnxModel> describeOnnxModel(std::string_view bytes, std::string& error);

// Neither ONNX's checker nor OpenCV's importer is made for damaged or hostile files, and a crash
// there must not take the caller's process down. So the engine's work on a model (ONNX's check, the
// import, a build of `layers` run once on zeros) is first done by the program snpe_onnx_probe, which
// lies beside this library, in a process of its own; only when it succeeds does the runtime do the
// same in its own process. False with the reason: the engine's, or that the probe crashed.
bool probeOnnxModel(const std::string& bytes, const std::vector<std::string>& layers, std::string& error);

// The probe's own work, in its process: "" when the model passes, else the reason.
std::string tryOnnxModel(const std::string& bytes, const std::vector<std::string>& layers);

}  // namespace snpe_stub::detail
