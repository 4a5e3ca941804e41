#include <string>

#include "StandIn.h"

namespace standin {
namespace {

class ObjectsTest : public StandInTest {};

TEST_F(ObjectsTest, RuntimeListKeepsTheOrderOfAdding) {
  RuntimeList list(Snpe_RuntimeList_Create());
  for (Snpe_Runtime_t runtime : {SNPE_RUNTIME_DSP, SNPE_RUNTIME_GPU_FLOAT16, SNPE_RUNTIME_CPU, SNPE_RUNTIME_DSP}) {
    EXPECT_EQ(Snpe_RuntimeList_Add(list.get(), runtime), SNPE_SUCCESS);
  }
  EXPECT_EQ(Snpe_RuntimeList_Add(list.get(), SNPE_RUNTIME_UNSET), SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  EXPECT_EQ(Snpe_RuntimeList_Add(list.get(), static_cast<Snpe_Runtime_t>(4)), SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  ASSERT_EQ(Snpe_RuntimeList_Size(list.get()), 3u) << "a runtime added again keeps its first place";
  EXPECT_EQ(Snpe_RuntimeList_GetRuntime(list.get(), 0), SNPE_RUNTIME_DSP);
  EXPECT_EQ(Snpe_RuntimeList_GetRuntime(list.get(), 1), SNPE_RUNTIME_GPU_FLOAT16);
  EXPECT_EQ(Snpe_RuntimeList_GetRuntime(list.get(), 2), SNPE_RUNTIME_CPU);
  EXPECT_EQ(Snpe_RuntimeList_GetRuntime(list.get(), 3), SNPE_RUNTIME_UNSET);
  EXPECT_EQ(Snpe_RuntimeList_GetRuntime(list.get(), -1), SNPE_RUNTIME_UNSET);
}

TEST_F(ObjectsTest, StringListCopiesItsEntriesAndAnswersEmptyOutOfRange) {
  StringList list(Snpe_StringList_Create());
  std::string text = "first";
  EXPECT_EQ(Snpe_StringList_Append(list.get(), text.c_str()), SNPE_SUCCESS);
  text[0] = 'F';
  EXPECT_EQ(Snpe_StringList_Append(list.get(), ""), SNPE_SUCCESS);
  EXPECT_EQ(Snpe_StringList_Append(list.get(), nullptr), SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  EXPECT_EQ(strings(list.get()), (std::vector<std::string>{"first", ""}));
  EXPECT_STREQ(Snpe_StringList_At(list.get(), 2), "");
  EXPECT_STREQ(Snpe_StringList_At(nullptr, 0), "");
}

TEST_F(ObjectsTest, TensorShapeOfNoDimensionsHasNone) {
  const size_t dims[] = {1, 224, 224, 3};
  Shape shape(Snpe_TensorShape_CreateDimsSize(dims, 4));
  ASSERT_EQ(Snpe_TensorShape_Rank(shape.get()), 4u);
  EXPECT_EQ(Snpe_TensorShape_At(shape.get(), 2), 224u);
  EXPECT_EQ(Snpe_TensorShape_At(shape.get(), 4), 0u);

  Shape empty(Snpe_TensorShape_CreateDimsSize(nullptr, 0));
  ASSERT_TRUE(empty);
  EXPECT_EQ(Snpe_TensorShape_Rank(empty.get()), 0u);
  EXPECT_EQ(Snpe_TensorShape_GetDimensions(empty.get()), nullptr);
  EXPECT_EQ(Snpe_TensorShape_CreateDimsSize(nullptr, 2), nullptr);
}

TEST_F(ObjectsTest, UserBufferMapReplacesByNameAndHandsOutNewNameLists) {
  float memory[4];
  UserBuffer first = floatBuffer(memory, sizeof memory, {4});
  UserBuffer second = floatBuffer(memory, sizeof memory, {4});
  BufferMap map(Snpe_UserBufferMap_Create());
  EXPECT_EQ(Snpe_UserBufferMap_Add(map.get(), "a", first.get()), SNPE_SUCCESS);
  EXPECT_EQ(Snpe_UserBufferMap_Add(map.get(), "b", first.get()), SNPE_SUCCESS);
  EXPECT_EQ(Snpe_UserBufferMap_Add(map.get(), "a", second.get()), SNPE_SUCCESS);
  EXPECT_EQ(Snpe_UserBufferMap_Add(map.get(), "c", map.get()), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  EXPECT_EQ(Snpe_IUserBuffer_GetSize(first.get()), sizeof memory);
  EXPECT_EQ(Snpe_UserBufferMap_Size(map.get()), 2u);
  EXPECT_EQ(Snpe_UserBufferMap_GetUserBuffer_Ref(map.get(), "a"), second.get());
  EXPECT_EQ(Snpe_UserBufferMap_GetUserBuffer_Ref(map.get(), "b"), first.get());
  EXPECT_EQ(Snpe_UserBufferMap_GetUserBuffer_Ref(map.get(), "c"), nullptr);

  StringList names(Snpe_UserBufferMap_GetUserBufferNames(map.get()));
  StringList again(Snpe_UserBufferMap_GetUserBufferNames(map.get()));
  EXPECT_NE(names.get(), again.get());
  EXPECT_EQ(strings(names.get()), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(snpe_stub::liveCount(snpe_stub::Kind::StringList), 2);
}

}  // namespace
}  // namespace standin
