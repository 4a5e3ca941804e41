#include "OnnxTestData.h"

#include <onnx/onnx_pb.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

namespace snpe_stub::testdata {
namespace {

bool readFile(const std::string& path, std::string& bytes) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  bytes = text.str();
  return file.good() || file.eof();
}

bool isFloatTensor(const onnx::ValueInfoProto& info) {
  return info.type().has_tensor_type() && info.type().tensor_type().elem_type() == onnx::TensorProto::FLOAT;
}

bool readGolden(const std::string& path, const std::string& name, Golden& golden, std::string& error) {
  std::string bytes;
  onnx::TensorProto tensor;
  if (!readFile(path, bytes) || !tensor.ParseFromString(bytes) || tensor.data_type() != onnx::TensorProto::FLOAT) {
    error = path + ": not a float tensor";
    return false;
  }
  golden.name = name;
  golden.dims.assign(tensor.dims().begin(), tensor.dims().end());
  if (golden.dims.empty()) golden.dims.push_back(1);
  size_t count = 1;
  for (size_t dim : golden.dims) count *= dim;
  golden.values.resize(count);
  if (tensor.has_raw_data() && tensor.raw_data().size() == count * sizeof(float)) {
    std::memcpy(golden.values.data(), tensor.raw_data().data(), count * sizeof(float));
  } else if (static_cast<size_t>(tensor.float_data_size()) == count) {
    std::copy(tensor.float_data().begin(), tensor.float_data().end(), golden.values.begin());
  } else {
    error = path + ": " + std::to_string(count) + " elements expected";
    return false;
  }
  return true;
}

}  // namespace

std::vector<size_t> Golden::deviceDims() const {
  return dims.size() == 4 ? std::vector<size_t>{dims[0], dims[2], dims[3], dims[1]} : dims;
}

std::vector<float> Golden::deviceValues() const {
  if (dims.size() != 4) return values;
  const size_t n = dims[0], c = dims[1], h = dims[2], w = dims[3];
  std::vector<float> moved(values.size());
  for (size_t i = 0; i < n * c * h * w; ++i) {
    const size_t x = i % w, y = i / w % h, channel = i / (w * h) % c, batch = i / (w * h * c);
    moved[((batch * h + y) * w + x) * c + channel] = values[i];
  }
  return moved;
}

bool readTestCase(const std::string& directory, TestCase& test, std::string& error) {
  onnx::ModelProto proto;
  if (!readFile(directory + "/model.onnx", test.model) || !proto.ParseFromString(test.model)) {
    error = directory + ": no model";
    return false;
  }
  std::set<std::string> constants;
  for (const auto& initializer : proto.graph().initializer()) constants.insert(initializer.name());
  const std::string data = directory + "/test_data_set_0/";
  test.inputs.clear();
  test.outputs.clear();
  for (const auto& info : proto.graph().input()) {
    if (constants.count(info.name())) continue;
    const std::string path = data + "input_" + std::to_string(test.inputs.size()) + ".pb";
    if (!isFloatTensor(info) || !readGolden(path, info.name(), test.inputs.emplace_back(), error)) {
      if (!isFloatTensor(info)) error = directory + ": input '" + info.name() + "' is not a float tensor";
      return false;
    }
  }
  for (const auto& info : proto.graph().output()) {
    const std::string path = data + "output_" + std::to_string(test.outputs.size()) + ".pb";
    if (!isFloatTensor(info) || !readGolden(path, info.name(), test.outputs.emplace_back(), error)) {
      if (!isFloatTensor(info)) error = directory + ": output '" + info.name() + "' is not a float tensor";
      return false;
    }
  }
  return true;
}

void makeConstant(TestCase& test, size_t from) {
  onnx::ModelProto proto;
  proto.ParseFromString(test.model);
  onnx::GraphProto& graph = *proto.mutable_graph();
  for (size_t i = from; i < test.inputs.size(); ++i) {
    const Golden& input = test.inputs[i];
    onnx::TensorProto& constant = *graph.add_initializer();
    constant.set_name(input.name);
    constant.set_data_type(onnx::TensorProto::FLOAT);
    for (size_t dim : input.dims) constant.add_dims(static_cast<int64_t>(dim));
    constant.set_raw_data(input.values.data(), input.values.size() * sizeof(float));
    auto& inputs = *graph.mutable_input();
    inputs.erase(
        std::find_if(inputs.begin(), inputs.end(), [&](const auto& info) { return info.name() == input.name; }));
  }
  test.inputs.resize(std::min(from, test.inputs.size()));
  test.model = proto.SerializeAsString();
}

bool closeTo(const std::vector<float>& actual, const std::vector<float>& expected) {
  if (actual.size() != expected.size()) return false;
  for (size_t i = 0; i < actual.size(); ++i) {
    if (std::isnan(actual[i]) && std::isnan(expected[i])) continue;
    if (!(std::fabs(actual[i] - expected[i]) <= 1e-4f + 1e-3f * std::fabs(expected[i]))) return false;
  }
  return true;
}

}  // namespace snpe_stub::testdata
