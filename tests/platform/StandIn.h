// Helpers for tests of the NN runtime's host stand-in: owning handles, model files, a fixture that
// starts from a reset stand-in and checks that every object was released.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DlContainer/DlContainer.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/RuntimeList.h"
#include "DlSystem/StringList.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPE/SNPE.h"
#include "SNPE/SNPEBuilder.h"
#include "SNPE/SNPEUtil.h"
#include "snpe_stub/SnpeControl.h"

namespace standin {

// channel_mean over a 4x5 image of 3 channels.
inline constexpr const char* kMeanModel =
    "TIVORA-HOST-DLC 1\nversion: mean-colour-1.0\ninput: image 1x4x5x3\noutput: mean 1x3\nop: channel_mean\n";

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

// Writes `text` to a file of that name in the test program's model directory; returns its path.
std::string writeFile(const std::string& name, const std::string& text);

Container openText(const std::string& text);

// A network of the model `text`, on the runtimes in order (none: the builder's default).
Network build(const std::string& text, const std::vector<Snpe_Runtime_t>& runtimes = {});

// A float user buffer over `memory` with the given byte strides.
UserBuffer floatBuffer(void* memory, size_t bytes, const std::vector<size_t>& strides);

std::vector<std::string> strings(Snpe_StringList_Handle_t list);

inline std::string lastError() { return Snpe_ErrorCode_GetLastErrorString(); }

// Starts from a reset stand-in; at the end every object the case created must be gone.
class StandInTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
};

}  // namespace standin
