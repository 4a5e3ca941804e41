#include "SlotNetworks.h"

#include <cstdio>

#include "DeviceFiles.h"
#include "DlSystem/TensorShape.h"
#include "SNPE/SNPEUtil.h"

namespace tivora::test {

std::string writeModel(const std::string& name, const std::string& text) {
  const std::string path = std::string(paths::kVendorCameraDir) + "/" + name;
  writeFile(path, text);
  return path;
}

SNPEParam paramFor(const std::string& path) {
  SNPEParam param;
  std::snprintf(param.dlc_path, sizeof param.dlc_path, "%s", path.c_str());
  param.runtime = TVR_RUNTIME_CPU;
  param.use_user_buffers = true;
  return param;
}

tvr_create_param_t createRecordFor(const std::string& path) {
  tvr_create_param_t create{};
  std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s", path.c_str());
  create.dlc_num = 1;
  create.use_user_buffers = true;
  return create;
}

SlotBuffers::SlotBuffers(SNPEMgr* manager, unsigned int slot, bool withOutput)
    : mManager(manager), mSlot(slot), mEncoding(Snpe_UserBufferEncodingFloat_Create()) {
  manager->mInputMap[slot] = Snpe_UserBufferMap_Create();
  manager->mOutputMap[slot] = Snpe_UserBufferMap_Create();
  // Packed byte strides of 1x4x5x3 and 1x3 floats.
  add(manager->mInputMap[slot], manager->mInputBuffers[slot], "image", image, {240, 60, 12, 4});
  if (withOutput) add(manager->mOutputMap[slot], manager->mOutputBuffers[slot], "mean", mean, {12, 4});
}

void SlotBuffers::add(Snpe_UserBufferMap_Handle_t map, std::vector<Snpe_IUserBuffer_Handle_t>& buffers,
                      const char* name, std::vector<float>& memory, std::vector<size_t> strides) {
  Snpe_TensorShape_Handle_t shape = Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size());
  buffers.push_back(Snpe_Util_CreateUserBuffer(memory.data(), memory.size() * sizeof(float), shape, mEncoding));
  Snpe_TensorShape_Delete(shape);
  Snpe_UserBufferMap_Add(map, name, buffers.back());
}

SlotBuffers::~SlotBuffers() {
  for (auto* list : {&mManager->mInputBuffers[mSlot], &mManager->mOutputBuffers[mSlot]}) {
    for (Snpe_IUserBuffer_Handle_t buffer : *list) Snpe_IUserBuffer_Delete(buffer);
    list->clear();
  }
  for (auto* map : {&mManager->mInputMap[mSlot], &mManager->mOutputMap[mSlot]}) {
    Snpe_UserBufferMap_Delete(*map);
    *map = nullptr;
  }
  Snpe_UserBufferEncodingFloat_Delete(mEncoding);
}

}  // namespace tivora::test
