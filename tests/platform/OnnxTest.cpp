// ONNX models through the runtime's C interface: ONNX's own backend test cases, and models that
// the runtime must refuse, changed here with ONNX's protobuf classes.
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

class OnnxModelTest : public StandInTest {};

// A backend case's model, cut short or changed so that the engine cannot run it.
TEST_F(OnnxModelTest, RefusesWhatTheEngineCannotRunWithItsReason) {
  const std::string softmax = tivora::test::loadFixture({"node/test_softmax_axis_1", 1}).model;
  const auto changed = [&softmax](void (*change)(onnx::TypeProto_Tensor&, onnx::NodeProto&)) {
    onnx::ModelProto model;
    EXPECT_TRUE(model.ParseFromString(softmax));
    change(*model.mutable_graph()->mutable_input(0)->mutable_type()->mutable_tensor_type(),
           *model.mutable_graph()->mutable_node(0));
    return model.SerializeAsString();
  };
  const std::pair<std::string, const char*> cases[] = {
      {softmax.substr(0, softmax.size() - 9), "not a protocol buffer"},
      {changed([](auto&, auto& node) { node.set_op_type("Hardmax"); }), "of type \"Hardmax\""},
      {changed([](auto& input, auto&) { input.mutable_shape()->mutable_dim(1)->set_dim_param("h"); }),
       "input 'x' has a dynamic dimension 1 ('h')"},
      {changed([](auto& input, auto&) { input.set_elem_type(onnx::TensorProto::INT64); }),
       "input 'x' holds INT64 elements"},
  };
  for (const auto& [bytes, reason] : cases) {
    EXPECT_FALSE(open(bytes));
    EXPECT_NE(lastError().find(reason), std::string::npos) << lastError();
  }
}

}  // namespace
}  // namespace standin
