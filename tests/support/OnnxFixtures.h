// The ONNX backend test cases that the runtime's C interface and the library both run: one per kind
// of layer a camera network is made of, from Debian's libonnx-testdata.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "OnnxTestData.h"

namespace tivora::test {

struct OnnxFixture {
  const char* name;     // under the test data's root
  size_t constantFrom;  // inputs from this index on become constants of the model (its weights, its scales)
};

inline constexpr OnnxFixture kOnnxFixtures[] = {
    {"node/test_conv_with_strides_padding", 2},  // the weights are a second rank-4 input
    {"node/test_maxpool_2d_pads", 1},
    {"pytorch-converted/test_BatchNorm2d_eval", 1},
    {"pytorch-converted/test_Linear", 1},  // Gemm
    {"node/test_softmax_axis_1", 1},
    {"node/test_concat_3d_axis_1", 3},
    {"node/test_resize_upsample_scales_nearest", 1},
};

// "conv_with_strides_padding": the case's name, also as a test's name.
inline std::string fixtureName(const OnnxFixture& fixture) {
  const std::string name = fixture.name;
  return name.substr(name.rfind("/test_") + 6);
}

// The case with its golden data; fails the test when it cannot be read.
inline snpe_stub::testdata::TestCase loadFixture(const OnnxFixture& fixture) {
  snpe_stub::testdata::TestCase test;
  std::string error;
  EXPECT_TRUE(
      snpe_stub::testdata::readTestCase(std::string(snpe_stub::testdata::kRoot) + "/" + fixture.name, test, error))
      << error;
  snpe_stub::testdata::makeConstant(test, fixture.constantFrom);
  return test;
}

}  // namespace tivora::test
