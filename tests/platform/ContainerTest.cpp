#include <string>

#include "StandIn.h"

namespace standin {
namespace {

class ContainerTest : public StandInTest {};

TEST_F(ContainerTest, FileAndBufferGiveTheSameModel) {
  const std::string path = writeFile("mean.dlc", kMeanModel);
  Container containers[] = {Container(Snpe_DlContainer_Open(path.c_str())), openText(kMeanModel)};
  for (Container& container : containers) {
    ASSERT_TRUE(container) << Snpe_ErrorCode_GetLastErrorString();
    Builder builder(Snpe_SNPEBuilder_Create(container.get()));
    Network network(Snpe_SNPEBuilder_Build(builder.get()));
    ASSERT_TRUE(network) << Snpe_ErrorCode_GetLastErrorString();
    EXPECT_STREQ(Snpe_SNPE_GetModelVersion(network.get()), "mean-colour-1.0");
    StringList inputs(Snpe_SNPE_GetInputTensorNames(network.get()));
    StringList outputs(Snpe_SNPE_GetOutputTensorNames(network.get()));
    EXPECT_EQ(strings(inputs.get()), std::vector<std::string>{"image"});
    EXPECT_EQ(strings(outputs.get()), std::vector<std::string>{"mean"});
    Shape dims(Snpe_SNPE_GetInputDimensions(network.get(), "image"));
    ASSERT_EQ(Snpe_TensorShape_Rank(dims.get()), 4u);
    const size_t* d = Snpe_TensorShape_GetDimensions(dims.get());
    EXPECT_EQ(std::vector<size_t>(d, d + 4), (std::vector<size_t>{1, 4, 5, 3}));
    EXPECT_EQ(Snpe_SNPE_GetInputDimensions(network.get(), "mean"), nullptr) << "an output is not an input";
  }
}

TEST_F(ContainerTest, AcceptsCommentsBlankLinesCarriageReturnsAndAnyLineOrder) {
  Network network = build(
      "TIVORA-HOST-DLC 1\r\n"
      "# a comment\r\n"
      "\r\n"
      "op: copy\r\n"
      "output: b/out.0 6\r\n"
      "input:   a_in:0   1x6  \r\n"
      "version: v 1\r\n");
  ASSERT_TRUE(network) << Snpe_ErrorCode_GetLastErrorString();
  EXPECT_STREQ(Snpe_SNPE_GetModelVersion(network.get()), "v 1");
  StringList inputs(Snpe_SNPE_GetInputTensorNames(network.get()));
  EXPECT_EQ(strings(inputs.get()), std::vector<std::string>{"a_in:0"});
}

TEST_F(ContainerTest, MissingFileFailsWithItsName) {
  const std::string path = "platform_models/no-such-model.dlc";
  EXPECT_EQ(Snpe_DlContainer_Open(path.c_str()), nullptr);
  EXPECT_NE(std::string(Snpe_ErrorCode_GetLastErrorString()).find(path), std::string::npos);
  EXPECT_EQ(Snpe_DlContainer_Open(nullptr), nullptr);
  EXPECT_EQ(Snpe_DlContainer_OpenBuffer(nullptr, 4), nullptr);
}

struct Rejected {
  const char* what;
  std::string text;
  const char* reason;  // part of the last error
};

class RejectedContainerTest : public ContainerTest, public ::testing::WithParamInterface<Rejected> {};

TEST_P(RejectedContainerTest, FailsToOpenFromFileAndBuffer) {
  const Rejected& bad = GetParam();
  const std::string path = writeFile(std::string(bad.what) + ".dlc", bad.text);
  EXPECT_EQ(Snpe_DlContainer_Open(path.c_str()), nullptr);
  EXPECT_NE(std::string(Snpe_ErrorCode_GetLastErrorString()).find(bad.reason), std::string::npos)
      << Snpe_ErrorCode_GetLastErrorString();
  snpe_stub::setLastError("");
  EXPECT_FALSE(openText(bad.text));
  EXPECT_NE(std::string(Snpe_ErrorCode_GetLastErrorString()).find(bad.reason), std::string::npos)
      << Snpe_ErrorCode_GetLastErrorString();
}

std::string mean(const std::string& from, const std::string& to) {
  std::string text = kMeanModel;
  return text.replace(text.find(from), from.size(), to);
}

INSTANTIATE_TEST_SUITE_P(
    , RejectedContainerTest,
    ::testing::Values(
        Rejected{"empty", "", "empty"},
        Rejected{"wrong_magic", mean("TIVORA-HOST-DLC 1", "TIVORA-HOST-DLC 2"), "not a host model container"},
        Rejected{"binary",
                 std::string("\x7f"
                             "ELF\x02\x01\x01\0\0\0",
                             10),
                 "binary"},
        Rejected{"magic_only", "TIVORA-HOST-DLC 1\n", "truncated: no version"},
        Rejected{"no_op", mean("op: channel_mean\n", ""), "truncated: no op"},
        Rejected{"cut_mid_line", mean("4x5x3\noutput: mean 1x3\nop: channel_mean\n", ""), "bad shape '1x'"},
        Rejected{"zero_dimension", mean("1x4x5x3", "1x0x5x3"), "bad shape '1x0x5x3'"},
        Rejected{"too_many_elements", mean("1x4x5x3", "65536x65536x3"), "bad shape"},
        Rejected{"no_shape", mean("image 1x4x5x3", "image"), "name and a shape"},
        Rejected{"same_name_twice", mean("mean 1x3", "image 1x3"), "second tensor named 'image'"},
        Rejected{"unknown_op", mean("channel_mean", "softmax"), "unknown op 'softmax'"},
        Rejected{"unknown_key", mean("version:", "versoin:"), "unknown key 'versoin'"},
        Rejected{"mean_of_4_channels", mean("1x4x5x3", "1x4x5x4"), "channel_mean needs"},
        Rejected{"copy_of_other_size", mean("channel_mean", "copy"), "copy needs"}),
    [](const ::testing::TestParamInfo<Rejected>& param) { return std::string(param.param.what); });

}  // namespace
}  // namespace standin
