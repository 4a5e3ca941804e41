// Helpers for tests of the NN runtime's host stand-in: owning handles, models, user buffers, and a
// fixture that starts from a reset stand-in and checks that every object was released.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "DeviceFiles.h"
#include "DlContainer/DlContainer.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/RuntimeList.h"
#include "DlSystem/StringList.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPE/SNPE.h"
#include "SNPE/SNPEBuilder.h"
#include "SNPE/SNPEUtil.h"
#include "SlotNetworks.h"
#include "snpe_stub/SnpeControl.h"

namespace standin {

using tivora::test::kMeanModel;
// copy of 2x3 elements into a tensor of another shape, and a second output the op leaves alone.
inline constexpr const char* kCopyModel =
    "TIVORA-HOST-DLC 1\nversion: copy-2.1\ninput: in 2x3\noutput: out 3x2\noutput: side 4\nop: copy\n";
inline constexpr const char* kNoneModel = "TIVORA-HOST-DLC 1\nversion: none-0\ninput: in 4\noutput: out 4\nop: none\n";

template <auto Delete>
struct Deleter {
  void operator()(void* handle) const { EXPECT_EQ(Delete(handle), SNPE_SUCCESS); }
};

// A handle that is deleted, and checked to delete cleanly, when it goes out of scope.
template <auto Delete>
using Owned = std::unique_ptr<void, Deleter<Delete>>;

using Container = Owned<Snpe_DlContainer_Delete>;
using Builder = Owned<Snpe_SNPEBuilder_Delete>;
using Network = Owned<Snpe_SNPE_Delete>;
using RuntimeList = Owned<Snpe_RuntimeList_Delete>;
using StringList = Owned<Snpe_StringList_Delete>;
using Shape = Owned<Snpe_TensorShape_Delete>;
using Encoding = Owned<Snpe_UserBufferEncodingFloat_Delete>;
using UserBuffer = Owned<Snpe_IUserBuffer_Delete>;
using BufferMap = Owned<Snpe_UserBufferMap_Delete>;

inline Container open(const std::string& bytes) {
  return Container(Snpe_DlContainer_OpenBuffer(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
}

// A network of the model in `bytes`, on the runtimes in order (none: the builder's default), with
// the given output layers (none: the model's outputs).
inline Network build(const std::string& bytes, const std::vector<Snpe_Runtime_t>& runtimes = {},
                     const std::vector<std::string>& layers = {}) {
  Container container = open(bytes);
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  if (!builder) return Network();
  RuntimeList list(Snpe_RuntimeList_Create());
  for (Snpe_Runtime_t runtime : runtimes) EXPECT_EQ(Snpe_RuntimeList_Add(list.get(), runtime), SNPE_SUCCESS);
  if (!runtimes.empty()) {
    EXPECT_EQ(Snpe_SNPEBuilder_SetRuntimeProcessorOrder(builder.get(), list.get()), SNPE_SUCCESS);
  }
  StringList names(Snpe_StringList_Create());
  for (const std::string& layer : layers) Snpe_StringList_Append(names.get(), layer.c_str());
  EXPECT_EQ(Snpe_SNPEBuilder_SetOutputLayers(builder.get(), names.get()), SNPE_SUCCESS);
  return Network(Snpe_SNPEBuilder_Build(builder.get()));
}

// A float user buffer over `memory` with the given byte strides; or over all of `memory`, packed.
inline UserBuffer floatBuffer(void* memory, size_t bytes, const std::vector<size_t>& strides) {
  Shape shape(Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size()));
  Encoding encoding(Snpe_UserBufferEncodingFloat_Create());
  return UserBuffer(Snpe_Util_CreateUserBuffer(memory, bytes, shape.get(), encoding.get()));
}

inline UserBuffer packedBuffer(std::vector<float>& memory, const std::vector<size_t>& dims) {
  std::vector<size_t> strides(dims.size());
  size_t stride = sizeof(float);
  for (size_t i = dims.size(); i-- > 0; stride *= dims[i]) strides[i] = stride;
  return floatBuffer(memory.data(), memory.size() * sizeof(float), strides);
}

inline BufferMap bufferMap(std::initializer_list<std::pair<std::string, const UserBuffer*>> entries) {
  BufferMap map(Snpe_UserBufferMap_Create());
  for (const auto& [name, buffer] : entries) Snpe_UserBufferMap_Add(map.get(), name.c_str(), buffer->get());
  return map;
}

inline std::vector<std::string> outputNames(Snpe_SNPE_Handle_t network) {
  StringList list(Snpe_SNPE_GetOutputTensorNames(network));
  std::vector<std::string> names;
  for (size_t i = 0; i < Snpe_StringList_Size(list.get()); ++i) names.emplace_back(Snpe_StringList_At(list.get(), i));
  return names;
}

inline std::vector<size_t> inputDims(Snpe_SNPE_Handle_t network, const std::string& name) {
  Shape shape(Snpe_SNPE_GetInputDimensions(network, name.c_str()));
  const size_t* dims = Snpe_TensorShape_GetDimensions(shape.get());
  return dims ? std::vector<size_t>(dims, dims + Snpe_TensorShape_Rank(shape.get())) : std::vector<size_t>();
}

inline std::string lastError() { return Snpe_ErrorCode_GetLastErrorString(); }

// Starts from a reset stand-in on an empty device; at the end every object the case created must
// be gone.
class StandInTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    snpe_stub::reset();
    ASSERT_EQ(snpe_stub::liveCount(), 0) << "an earlier case leaked objects";
  }
  void TearDown() override {
    EXPECT_EQ(snpe_stub::liveCount(), 0) << "objects still alive";
    snpe_stub::reset();
    DeviceTest::TearDown();
  }
};

}  // namespace standin
