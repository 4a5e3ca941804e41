// ONNX models through the runtime's C interface: ONNX's own backend test cases, and models that
// the runtime must refuse, made here with ONNX's protobuf classes.
#include <onnx/onnx_pb.h>

#include <string>

#include "OnnxFixtures.h"
#include "StandIn.h"

namespace standin {
namespace {

using tivora::test::OnnxFixture;

class OnnxFixtureTest : public StandInTest, public ::testing::WithParamInterface<OnnxFixture> {};

TEST_P(OnnxFixtureTest, RunsOnGoldenDataInTheDeviceLayout) {
  const auto test = tivora::test::loadFixture(GetParam());
  // Recognised by content: the file is named like a device container.
  const std::string path = tivora::test::writeModel(tivora::test::fixtureName(GetParam()) + ".dlc", test.model);
  Container container(Snpe_DlContainer_Open(path.c_str()));
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  Network network(Snpe_SNPEBuilder_Build(builder.get()));
  ASSERT_TRUE(network) << lastError();
  std::vector<std::string> expectedOutputs;
  for (const auto& output : test.outputs) expectedOutputs.push_back(output.name);
  EXPECT_EQ(outputNames(network.get()), expectedOutputs);

  std::vector<std::vector<float>> memory;  // moving a vector keeps its elements where they are
  std::vector<UserBuffer> buffers;
  BufferMap maps[2] = {bufferMap({}), bufferMap({})};
  for (const auto* list : {&test.inputs, &test.outputs}) {
    for (const auto& tensor : *list) {
      const bool input = list == &test.inputs;
      EXPECT_TRUE(!input || inputDims(network.get(), tensor.name) == tensor.deviceDims()) << tensor.name;
      memory.push_back(input ? tensor.deviceValues() : std::vector<float>(tensor.values.size()));
      buffers.push_back(packedBuffer(memory.back(), tensor.deviceDims()));
      Snpe_UserBufferMap_Add(maps[input ? 0 : 1].get(), tensor.name.c_str(), buffers.back().get());
    }
  }
  BufferMap &inputs = maps[0], &outputs = maps[1];
  ASSERT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), inputs.get(), outputs.get()), SNPE_SUCCESS) << lastError();
  for (size_t i = 0; i < test.outputs.size(); ++i) {
    EXPECT_TRUE(snpe_stub::testdata::closeTo(memory[test.inputs.size() + i], test.outputs[i].deviceValues()))
        << test.outputs[i].name;
  }
}

INSTANTIATE_TEST_SUITE_P(, OnnxFixtureTest, ::testing::ValuesIn(tivora::test::kOnnxFixtures),
                         [](const auto& param) { return tivora::test::fixtureName(param.param); });

// x (1x2x3x4) -> Relu -> r -> Sigmoid -> y.
onnx::ModelProto tinyModel() {
  onnx::ModelProto model;
  model.set_ir_version(8);
  model.set_producer_name("tivora-test");
  model.set_producer_version("1.0");
  model.set_model_version(3);
  model.add_opset_import()->set_version(13);
  onnx::GraphProto& graph = *model.mutable_graph();
  graph.set_name("tiny");
  for (const auto& [op, in, out] : {std::tuple{"Relu", "x", "r"}, {"Sigmoid", "r", "y"}}) {
    onnx::NodeProto& node = *graph.add_node();
    node.set_op_type(op);
    node.add_input(in);
    node.add_output(out);
  }
  for (auto* info : {graph.add_input(), graph.add_output()}) {
    info->set_name(info == &graph.input(0) ? "x" : "y");
    auto& type = *info->mutable_type()->mutable_tensor_type();
    type.set_elem_type(onnx::TensorProto::FLOAT);
    for (int dim : {1, 2, 3, 4}) type.mutable_shape()->add_dim()->set_dim_value(dim);
  }
  return model;
}

class OnnxModelTest : public StandInTest {};

TEST_F(OnnxModelTest, ShowsTheGraphsNameTensorsAndAnyOfThemAsAnOutputLayer) {
  const std::string bytes = tinyModel().SerializeAsString();
  Network network = build(bytes, {}, {"r", "y"});
  ASSERT_TRUE(network) << lastError();
  EXPECT_STREQ(Snpe_SNPE_GetModelVersion(network.get()), "tiny 3 (tivora-test 1.0, opset 13)");
  EXPECT_EQ(inputDims(network.get(), "x"), (std::vector<size_t>{1, 3, 4, 2}));
  EXPECT_EQ(outputNames(network.get()), (std::vector<std::string>{"r", "y"}));

  EXPECT_FALSE(build(bytes, {}, {"nope"}));
  EXPECT_NE(lastError().find("'nope' is not a tensor computed by model tiny 3"), std::string::npos) << lastError();
}

std::string tinyWith(void (*change)(onnx::GraphProto&)) {
  onnx::ModelProto model = tinyModel();
  change(*model.mutable_graph());
  return model.SerializeAsString();
}

onnx::TypeProto_Tensor& inputType(onnx::GraphProto& graph) {
  return *graph.mutable_input(0)->mutable_type()->mutable_tensor_type();
}

TEST_F(OnnxModelTest, RefusesWhatTheEngineCannotRunWithItsReason) {
  const std::string tiny = tinyModel().SerializeAsString();
  const std::pair<std::string, const char*> cases[] = {
      {tiny.substr(0, tiny.size() - 9), "not a protocol buffer"},
      {tinyWith([](onnx::GraphProto& g) { g.mutable_node(1)->set_op_type("Hardmax"); }),
       "Can't create layer \"onnx_node_output_0!y\" of type \"Hardmax\""},
      {tinyWith([](onnx::GraphProto& g) { inputType(g).mutable_shape()->mutable_dim(2)->set_dim_param("height"); }),
       "input 'x' has a dynamic dimension 2 ('height')"},
  };
  for (const auto& [bytes, reason] : cases) {
    EXPECT_FALSE(open(bytes));
    EXPECT_NE(lastError().find(reason), std::string::npos) << lastError();
  }
}

}  // namespace
}  // namespace standin
