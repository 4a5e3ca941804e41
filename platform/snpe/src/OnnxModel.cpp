// ONNX models: ONNX's own protobuf classes say what the model is (tensor names, shapes, types,
// metadata); OpenCV DNN (OnnxEngine.cpp) runs it. A model is refused at open when the runtime
// could not show it as the device runtime would (a tensor that is not float, a dynamic dimension
// other than the batch) or when the engine's first try, in a process of its own, fails: ONNX's
// checker refuses the graph, OpenCV cannot import it (an unsupported operator, say) or build it.
#include "OnnxModel.h"

#include <onnx/onnx_pb.h>

#include <climits>

namespace snpe_stub::detail {
namespace {

constexpr const char* kNotAModel = "neither a host model container (no 'TIVORA-HOST-DLC 1' line) nor an ONNX model";

std::string typeName(int32_t type) {
  return onnx::TensorProto_DataType_IsValid(type)
             ? onnx::TensorProto_DataType_Name(static_cast<onnx::TensorProto_DataType>(type))
             : "type " + std::to_string(type);
}

// The declared dimensions of `info`, in the model's order; an empty list when any is unknown.
std::vector<size_t> staticDims(const onnx::ValueInfoProto& info) {
  std::vector<size_t> dims;
  const auto& type = info.type().tensor_type();
  if (!type.has_shape()) return dims;
  for (const auto& dim : type.shape().dim()) {
    if (!dim.has_dim_value() || dim.dim_value() <= 0) return {};
    dims.push_back(static_cast<size_t>(dim.dim_value()));
  }
  if (dims.empty()) dims.push_back(1);  // a scalar
  return dims;
}

// An input as the runtime shows it; false with the reason. The first dimension is the batch: when
// the model leaves it open (as exported models often do) the network runs one frame at a time.
bool describeInput(const onnx::ValueInfoProto& info, Tensor& tensor, std::string& error) {
  const std::string what = "input '" + info.name() + "'";
  if (!info.type().has_tensor_type()) {
    error = what + " is not a tensor";
    return false;
  }
  const auto& type = info.type().tensor_type();
  if (type.elem_type() != onnx::TensorProto::FLOAT) {
    error = what + " holds " + typeName(type.elem_type()) + " elements; the runtime takes FLOAT only";
    return false;
  }
  if (!type.has_shape()) {
    error = what + " has no fixed shape";
    return false;
  }
  std::vector<size_t> dims;
  size_t elements = 1;
  for (const auto& dim : type.shape().dim()) {
    const std::string which = "dimension " + std::to_string(dims.size());
    size_t value = 1;  // an open batch
    if (dim.has_dim_value() && dim.dim_value() <= 0) {
      error = what + " has an empty " + which;
      return false;
    }
    if (dim.has_dim_value()) {
      value = static_cast<size_t>(dim.dim_value());
    } else if (!dims.empty()) {
      error = what + " has a dynamic " + which + (dim.has_dim_param() ? " ('" + dim.dim_param() + "')" : "");
      return false;
    }
    if (value > kMaxElements / elements) {
      error = what + " has more than " + std::to_string(kMaxElements) + " elements";
      return false;
    }
    elements *= value;
    dims.push_back(value);
  }
  tensor = shownTensor(info.name(), dims.empty() ? std::vector<size_t>{1} : dims);
  return true;
}

// "<graph> <model version> (<producer> <producer version>, opset <n>)", whatever of it the model has.
std::string versionOf(const onnx::ModelProto& proto) {
  std::string text = proto.graph().name().empty() ? "onnx" : proto.graph().name();
  if (proto.model_version() != 0) text += " " + std::to_string(proto.model_version());
  std::string origin = proto.producer_name();
  if (!proto.producer_version().empty()) origin += (origin.empty() ? "" : " ") + proto.producer_version();
  for (const auto& opset : proto.opset_import()) {
    if (opset.domain().empty() || opset.domain() == "ai.onnx") {
      origin += (origin.empty() ? "" : ", ") + std::string("opset ") + std::to_string(opset.version());
    }
  }
  return origin.empty() ? text : text + " (" + origin + ")";
}

std::shared_ptr<OnnxModel> describe(std::string_view bytes, std::string& error) {
  onnx::ModelProto proto;
  if (bytes.size() > INT_MAX || !proto.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()))) {
    error = std::string(kNotAModel) + " (not a protocol buffer of one)";
    return nullptr;
  }
  if (proto.ir_version() <= 0 || !proto.has_graph()) {
    error = std::string(kNotAModel) + " (no IR version or no graph)";
    return nullptr;
  }
  const onnx::GraphProto& graph = proto.graph();
  if (graph.node_size() == 0 || graph.output_size() == 0) {
    error = "the ONNX graph computes nothing";
    return nullptr;
  }
  auto model = std::make_shared<OnnxModel>();
  model->version = versionOf(proto);

  std::set<std::string> constants;
  for (const auto& initializer : graph.initializer()) {
    if (initializer.data_location() == onnx::TensorProto::EXTERNAL) {
      error = "tensor '" + initializer.name() + "' keeps its data in another file, which the runtime does not read";
      return nullptr;
    }
    constants.insert(initializer.name());
  }
  for (const auto& info : graph.input()) {
    if (constants.count(info.name())) continue;  // a weight with a default value, not an input
    Tensor tensor;
    if (info.name().empty() || !describeInput(info, tensor, error)) {
      if (info.name().empty()) error = "an input has no name";
      return nullptr;
    }
    model->inputs.push_back(std::move(tensor));
  }
  for (const auto& node : graph.node()) {
    for (const std::string& output : node.output()) {
      if (!output.empty()) model->computed.insert(output);
    }
  }
  for (const auto& info : graph.output()) {
    const int32_t type = info.type().tensor_type().elem_type();
    if (type != onnx::TensorProto::FLOAT) {
      error = "output '" + info.name() + "' holds " + typeName(type) + " elements; the runtime gives FLOAT only";
      return nullptr;
    }
    model->source.outputs.push_back(info.name());
  }
  for (const auto* list : {&graph.output(), &graph.value_info()}) {
    for (const auto& info : *list) model->source.declared[info.name()] = staticDims(info);
  }
  model->source.bytes = std::make_shared<const std::string>(bytes);
  return model;
}

}  // namespace

std::unique_ptr<Engine> OnnxModel::build(const std::vector<std::string>& layers, std::vector<Tensor>& produced,
                                         std::string& error) const {
  for (const std::string& layer : layers) {
    if (computed.count(layer) == 0) {
      error = "'" + layer + "' is not a tensor computed by model " + version;
      return nullptr;
    }
  }
  // The graph's own outputs were tried when the model was opened.
  if (!layers.empty() && !probeOnnxModel(*source.bytes, layers, error)) return nullptr;
  return buildOnnxEngine(source, layers, inputs, produced, error);
}

std::shared_ptr<OnnxModel> describeOnnxModel(std::string_view bytes, std::string& error) {
  try {
    return describe(bytes, error);
  } catch (const std::exception& e) {
    error = std::string("cannot read the ONNX model: ") + e.what();
  } catch (...) {
    error = "cannot read the ONNX model";
  }
  return nullptr;
}

Tensor shownTensor(const std::string& name, const std::vector<size_t>& modelDims) {
  Tensor tensor{name, modelDims, 1, modelDims.size() == 4};
  if (tensor.channelsLast) tensor.dims = {modelDims[0], modelDims[2], modelDims[3], modelDims[1]};
  for (size_t dim : modelDims) tensor.elements *= dim;
  return tensor;
}

std::shared_ptr<const Model> parseOnnxModel(std::string_view bytes, std::string& error) {
  std::shared_ptr<OnnxModel> model = describeOnnxModel(bytes, error);
  return model && probeOnnxModel(*model->source.bytes, {}, error) ? model : nullptr;
}

}  // namespace snpe_stub::detail
