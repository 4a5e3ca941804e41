#include <string>
#include <vector>

#include "StandIn.h"

namespace standin {
namespace {

constexpr float kCanary = -12345.0f;

class ExecuteTest : public StandInTest {
 protected:
  static BufferMap map(std::initializer_list<std::pair<const char*, const UserBuffer*>> entries) {
    BufferMap result(Snpe_UserBufferMap_Create());
    for (const auto& [name, buffer] : entries) Snpe_UserBufferMap_Add(result.get(), name, buffer->get());
    return result;
  }
};

TEST_F(ExecuteTest, CopyReadsAndWritesThroughTheByteStrides) {
  Network network = build(kCopyModel);
  ASSERT_TRUE(network);
  // in 2x3 with rows padded to 4 floats; out 3x2 stored column by column, columns padded to 4 floats.
  std::vector<float> in = {1, 2, 3, kCanary, 4, 5, 6, kCanary};
  std::vector<float> out(8, kCanary);
  std::vector<float> side(4, kCanary);
  UserBuffer inBuffer = floatBuffer(in.data(), 4 * 7, {16, 4});  // the last padding is not needed
  UserBuffer outBuffer = floatBuffer(out.data(), 4 * out.size(), {4, 16});
  UserBuffer sideBuffer = floatBuffer(side.data(), 4 * side.size(), {4});
  BufferMap inputs = map({{"in", &inBuffer}});
  BufferMap outputs = map({{"out", &outBuffer}, {"side", &sideBuffer}});

  ASSERT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), inputs.get(), outputs.get()), SNPE_SUCCESS) << lastError();
  // out(i, j) is element i * 2 + j of the input, at byte i * 4 + j * 16.
  EXPECT_EQ(out, (std::vector<float>{1, 3, 5, kCanary, 2, 4, 6, kCanary}));
  EXPECT_EQ(side, std::vector<float>(4, kCanary)) << "copy writes the first output only";
}

TEST_F(ExecuteTest, ChannelMeanOfAnImageWithPaddedRows) {
  Network network = build(kMeanModel);
  ASSERT_TRUE(network);
  // 4 rows of 5 RGB pixels, rows 80 bytes apart; R = x, G = 10 y, B = 0.5; padding would spoil the mean.
  constexpr size_t kRowFloats = 20;
  std::vector<float> image(4 * kRowFloats, 1e9f);
  for (size_t y = 0; y < 4; ++y) {
    for (size_t x = 0; x < 5; ++x) {
      float* pixel = &image[y * kRowFloats + x * 3];
      pixel[0] = static_cast<float>(x);
      pixel[1] = 10.0f * static_cast<float>(y);
      pixel[2] = 0.5f;
    }
  }
  float mean[3] = {kCanary, kCanary, kCanary};
  UserBuffer imageBuffer = floatBuffer(image.data(), 300, {4 * 80, 80, 12, 4});  // up to the last element
  UserBuffer meanBuffer = floatBuffer(mean, sizeof mean, {12, 4});
  BufferMap inputs = map({{"image", &imageBuffer}});
  BufferMap outputs = map({{"mean", &meanBuffer}});

  ASSERT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), inputs.get(), outputs.get()), SNPE_SUCCESS) << lastError();
  EXPECT_FLOAT_EQ(mean[0], 2.0f);
  EXPECT_FLOAT_EQ(mean[1], 15.0f);
  EXPECT_FLOAT_EQ(mean[2], 0.5f);
}

TEST_F(ExecuteTest, RefusesMissingAndUnfitBuffersWithoutWritingAnything) {
  Network network = build(kCopyModel);
  std::vector<float> in(6, 1.0f);
  std::vector<float> out(6, kCanary);
  std::vector<float> side(4);
  UserBuffer inBuffer = floatBuffer(in.data(), 24, {12, 4});
  UserBuffer shortBuffer = floatBuffer(in.data(), 23, {12, 4});
  UserBuffer flatBuffer = floatBuffer(in.data(), 24, {4});
  UserBuffer outBuffer = floatBuffer(out.data(), 24, {8, 4});
  UserBuffer sideBuffer = floatBuffer(side.data(), 16, {4});
  UserBuffer doomed = floatBuffer(in.data(), 24, {12, 4});
  BufferMap outputs = map({{"out", &outBuffer}, {"side", &sideBuffer}});
  BufferMap wrongName = map({{"out", &inBuffer}});
  BufferMap tooSmall = map({{"in", &shortBuffer}});
  BufferMap wrongRank = map({{"in", &flatBuffer}});
  BufferMap deleted = map({{"in", &doomed}});
  doomed.reset();
  BufferMap good = map({{"in", &inBuffer}});
  BufferMap noSide = map({{"out", &outBuffer}});

  const struct {
    Snpe_UserBufferMap_Handle_t inputs, outputs;
    const char* reason;
  } cases[] = {
      {wrongName.get(), outputs.get(), "input tensor 'in' has no user buffer"},
      {tooSmall.get(), outputs.get(), "holds 23 bytes, the tensor needs 24"},
      {wrongRank.get(), outputs.get(), "has 1 strides for 2 dimensions"},
      {deleted.get(), outputs.get(), "the user buffer of input tensor 'in' was deleted"},
      {good.get(), noSide.get(), "output tensor 'side' has no user buffer"},
      {good.get(), network.get(), "not a user-buffer map"},
  };
  for (const auto& c : cases) {
    EXPECT_NE(Snpe_SNPE_ExecuteUserBuffers(network.get(), c.inputs, c.outputs), SNPE_SUCCESS) << c.reason;
    EXPECT_NE(lastError().find(c.reason), std::string::npos) << lastError();
  }
  EXPECT_EQ(out, std::vector<float>(6, kCanary));
  EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(good.get(), good.get(), outputs.get()), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(network.get(), good.get(), outputs.get()), SNPE_SUCCESS);
  EXPECT_EQ(out, std::vector<float>(6, 1.0f));
}

}  // namespace
}  // namespace standin
