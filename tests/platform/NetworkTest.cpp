// The stand-in's text containers, builds and executions, where the library's tests rely on them.
#include <string>
#include <vector>

#include "StandIn.h"

namespace standin {
namespace {

constexpr float kCanary = -12345.0f;

class NetworkTest : public StandInTest {};

TEST_F(NetworkTest, FileAndBufferShowTheSameModelAndRefuseWhatIsNone) {
  const std::string path = tivora::test::writeModel("mean.dlc", kMeanModel);
  Container containers[] = {Container(Snpe_DlContainer_Open(path.c_str())), open(kMeanModel)};
  for (Container& container : containers) {
    Builder builder(Snpe_SNPEBuilder_Create(container.get()));
    Network network(Snpe_SNPEBuilder_Build(builder.get()));
    ASSERT_TRUE(network) << lastError();
    EXPECT_STREQ(Snpe_SNPE_GetModelVersion(network.get()), "mean-colour-1.0");
    EXPECT_EQ(outputNames(network.get()), std::vector<std::string>{"mean"});
    EXPECT_EQ(inputDims(network.get(), "image"), (std::vector<size_t>{1, 4, 5, 3}));
    EXPECT_EQ(Snpe_SNPE_GetInputDimensions(network.get(), "mean"), nullptr) << "an output is not an input";
  }
  const std::string mean = kMeanModel;
  for (const auto& [bytes, reason] : {std::pair<std::string, const char*>{"", "empty"},
                                      {mean.substr(0, mean.find("op:")), "truncated: no op"},
                                      {mean.substr(0, 16) + "2" + mean.substr(17), "no 'TIVORA-HOST-DLC 1' line"}}) {
    EXPECT_EQ(Snpe_DlContainer_Open(tivora::test::writeModel("bad.dlc", bytes).c_str()), nullptr);
    EXPECT_NE(lastError().find(reason), std::string::npos) << lastError();
  }
}

TEST_F(NetworkTest, BuildsForTheFirstAvailableRuntimeOfTheOrderWithTheOutputsAsked) {
  const struct {
    std::vector<Snpe_Runtime_t> available, order;
    Snpe_Runtime_t chosen;  // UNSET: the build fails
  } cases[] = {
      {{SNPE_RUNTIME_CPU}, {}, SNPE_RUNTIME_CPU},
      {{SNPE_RUNTIME_CPU, SNPE_RUNTIME_DSP}, {SNPE_RUNTIME_GPU, SNPE_RUNTIME_DSP, SNPE_RUNTIME_CPU}, SNPE_RUNTIME_DSP},
      {{SNPE_RUNTIME_CPU}, {SNPE_RUNTIME_DSP, SNPE_RUNTIME_GPU}, SNPE_RUNTIME_UNSET},
      {{}, {}, SNPE_RUNTIME_UNSET},
  };
  for (const auto& c : cases) {
    snpe_stub::setRuntimeAvailable(SNPE_RUNTIME_CPU, false);
    for (Snpe_Runtime_t runtime : c.available) snpe_stub::setRuntimeAvailable(runtime, true);
    Network network = build(kMeanModel, c.order);
    EXPECT_EQ(network ? snpe_stub::networkSettings(network.get())->runtime : SNPE_RUNTIME_UNSET, c.chosen);
    snpe_stub::reset();
  }
  EXPECT_EQ(outputNames(build(kCopyModel, {}, {"side", "side"}).get()), std::vector<std::string>{"side"});
  EXPECT_EQ(outputNames(build(kCopyModel).get()), (std::vector<std::string>{"out", "side"}));
  for (const char* wrong : {"in", "nope"}) {  // an input is no output layer
    EXPECT_FALSE(build(kCopyModel, {}, {"out", wrong}));
    EXPECT_NE(lastError().find("'" + std::string(wrong) + "' is not an output of model copy-2.1"), std::string::npos);
  }
}

TEST_F(NetworkTest, ExecutionReadsAndWritesThroughTheByteStrides) {
  Network copy = build(kCopyModel);
  // in 2x3 with rows padded to 4 floats; out 3x2 stored column by column, columns padded to 4 floats.
  std::vector<float> in = {1, 2, 3, kCanary, 4, 5, 6, kCanary}, out(8, kCanary), side(4, kCanary);
  UserBuffer inBuffer = floatBuffer(in.data(), 32, {16, 4}), outBuffer = floatBuffer(out.data(), 32, {4, 16});
  UserBuffer sideBuffer = packedBuffer(side, {4});
  BufferMap inputs = bufferMap({{"in", &inBuffer}}), outputs = bufferMap({{"out", &outBuffer}, {"side", &sideBuffer}});
  ASSERT_EQ(Snpe_SNPE_ExecuteUserBuffers(copy.get(), inputs.get(), outputs.get()), SNPE_SUCCESS) << lastError();
  EXPECT_EQ(out, (std::vector<float>{1, 3, 5, kCanary, 2, 4, 6, kCanary}));  // out(i, j) at byte 4 i + 16 j
  EXPECT_EQ(side, std::vector<float>(4, kCanary)) << "copy writes the first output only";
}

TEST_F(NetworkTest, ExecutionRefusesBuffersThatDoNotFitTheirTensorWithoutWritingAnything) {
  Network network = build(kCopyModel);
  std::vector<float> in(6, 1.0f), out(6, kCanary), side(4);
  UserBuffer inBuffer = packedBuffer(in, {2, 3}), outBuffer = packedBuffer(out, {3, 2}),
             sideBuffer = packedBuffer(side, {4});
  UserBuffer shortBuffer = floatBuffer(in.data(), 20, {12, 4}), flatBuffer = packedBuffer(in, {6});
  BufferMap outputs = bufferMap({{"out", &outBuffer}, {"side", &sideBuffer}});
  for (const auto& [inputs, reason] :
       {std::pair<BufferMap, const char*>{bufferMap({{"out", &inBuffer}}), "input tensor 'in' has no user buffer"},
        {bufferMap({{"in", &shortBuffer}}), "the user buffer holds 20 bytes, the tensor needs 24"},
        {bufferMap({{"in", &flatBuffer}}), "1 strides for 2 dimensions"}}) {
    EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), inputs.get(), outputs.get()),
              SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
    EXPECT_NE(lastError().find(reason), std::string::npos) << lastError();
  }
  EXPECT_EQ(out, std::vector<float>(6, kCanary));
  BufferMap good = bufferMap({{"in", &inBuffer}});
  EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), good.get(), network.get()), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), good.get(), outputs.get()), SNPE_SUCCESS);
  EXPECT_EQ(out, std::vector<float>(6, 1.0f));
}

}  // namespace
}  // namespace standin
