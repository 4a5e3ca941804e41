#include "StandIn.h"

#include <sys/stat.h>

#include <fstream>

namespace standin {

std::string writeFile(const std::string& name, const std::string& text) {
  // Beside the test program in the build tree (ctest's working directory), rewritten by every run.
  static const std::string directory = [] {
    const std::string path = "platform_models";
    mkdir(path.c_str(), 0700);
    return path;
  }();
  const std::string path = directory + "/" + name;
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
  return path;
}

Container openText(const std::string& text) {
  return Container(Snpe_DlContainer_OpenBuffer(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

Network build(const std::string& text, const std::vector<Snpe_Runtime_t>& runtimes) {
  Container container = openText(text);
  if (!container) return Network();
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  if (!runtimes.empty()) {
    RuntimeList list(Snpe_RuntimeList_Create());
    for (Snpe_Runtime_t runtime : runtimes) EXPECT_EQ(Snpe_RuntimeList_Add(list.get(), runtime), SNPE_SUCCESS);
    EXPECT_EQ(Snpe_SNPEBuilder_SetRuntimeProcessorOrder(builder.get(), list.get()), SNPE_SUCCESS);
  }
  EXPECT_EQ(Snpe_SNPEBuilder_SetUseUserSuppliedBuffers(builder.get(), 1), SNPE_SUCCESS);
  return Network(Snpe_SNPEBuilder_Build(builder.get()));
}

UserBuffer floatBuffer(void* memory, size_t bytes, const std::vector<size_t>& strides) {
  Shape shape(Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size()));
  Encoding encoding(Snpe_UserBufferEncodingFloat_Create());
  return UserBuffer(Snpe_Util_CreateUserBuffer(memory, bytes, shape.get(), encoding.get()));
}

std::vector<std::string> strings(Snpe_StringList_Handle_t list) {
  std::vector<std::string> result;
  for (size_t i = 0; i < Snpe_StringList_Size(list); ++i) result.emplace_back(Snpe_StringList_At(list, i));
  return result;
}

void StandInTest::SetUp() {
  snpe_stub::reset();
  ASSERT_EQ(snpe_stub::liveCount(), 0) << "an earlier case leaked objects";
}

void StandInTest::TearDown() {
  for (int k = 0; k <= static_cast<int>(snpe_stub::Kind::TensorShape); ++k) {
    const auto kind = static_cast<snpe_stub::Kind>(k);
    EXPECT_EQ(snpe_stub::liveCount(kind), 0) << snpe_stub::kindName(kind) << " objects still alive";
  }
  snpe_stub::reset();
}

}  // namespace standin
