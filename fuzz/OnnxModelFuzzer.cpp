// Arbitrary bytes as an ONNX model: the NN runtime's stand-in opens them (ONNX's protobuf classes,
// then OpenCV DNN's import) and, when that works, builds a network (OpenCV runs it once on zeros),
// with the graph's outputs or with the output of a node the input picks. Nothing may crash, throw
// across the C interface or leak: after each input every runtime object is released.
// The last byte of an input picks the build; the bytes before it are the model.
#include <onnx/onnx_pb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "DlContainer/DlContainer.h"
#include "DlSystem/DlError.h"
#include "DlSystem/StringList.h"
#include "SNPE/SNPE.h"
#include "SNPE/SNPEBuilder.h"
#include "snpe_stub/SnpeControl.h"

namespace {

// Largest input the build's run on zeros may take: keeps each run fast and small.
constexpr size_t kMaxInputElements = size_t{1} << 16;

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "onnx model: %s\n", what);
    std::abort();
  }
}

// What the build needs to know of the model: the output of node `pick` (modulo the node count; ""
// without nodes) and whether every input is small enough to build. False for bytes that are no model.
bool look(const uint8_t* data, size_t size, uint8_t pick, std::string& nodeOutput) {
  onnx::ModelProto model;
  if (!model.ParseFromArray(data, static_cast<int>(size))) return false;
  const auto& graph = model.graph();
  if (graph.node_size() > 0 && graph.node(pick % graph.node_size()).output_size() > 0) {
    nodeOutput = graph.node(pick % graph.node_size()).output(0);
  }
  for (const auto& input : graph.input()) {
    size_t elements = 1;
    for (const auto& dim : input.type().tensor_type().shape().dim()) {
      elements *= dim.dim_value() > 0 && dim.dim_value() <= int64_t{kMaxInputElements}
                      ? static_cast<size_t>(dim.dim_value())
                      : 1;
      if (elements > kMaxInputElements) return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  snpe_stub::setJournaling(false);  // the journal would grow for the whole run
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > (size_t{1} << 20)) return -1;
  const int liveBefore = snpe_stub::liveCount();
  const uint8_t pick = data[size - 1];
  Snpe_DlContainer_Handle_t container = Snpe_DlContainer_OpenBuffer(data, size - 1);
  require(container != nullptr || *Snpe_ErrorCode_GetLastErrorString() != '\0', "a failed open says why");
  Snpe_SNPEBuilder_Handle_t builder = container ? Snpe_SNPEBuilder_Create(container) : nullptr;
  Snpe_DlContainer_Delete(container);
  std::string layer;
  if (builder != nullptr && look(data, size - 1, static_cast<uint8_t>(pick >> 1), layer)) {
    Snpe_StringList_Handle_t layers = Snpe_StringList_Create();
    if ((pick & 1) != 0 && !layer.empty()) Snpe_StringList_Append(layers, layer.c_str());
    Snpe_SNPEBuilder_SetOutputLayers(builder, layers);
    Snpe_StringList_Delete(layers);
    Snpe_SNPE_Handle_t network = Snpe_SNPEBuilder_Build(builder);
    require(network != nullptr || *Snpe_ErrorCode_GetLastErrorString() != '\0', "a failed build says why");
    Snpe_SNPE_Delete(network);
  }
  Snpe_SNPEBuilder_Delete(builder);
  require(snpe_stub::liveCount() == liveBefore, "every runtime object is released");
  return 0;
}
