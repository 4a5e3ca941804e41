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

SlotBuffers::SlotBuffers(SNPEMgr* manager, unsigned int slot, const std::vector<Tensor>& inputs,
                         const std::vector<Tensor>& outputs)
    : mManager(manager), mSlot(slot), mEncoding(Snpe_UserBufferEncodingFloat_Create()) {
  mInputMemory.reserve(inputs.size());
  mOutputMemory.reserve(outputs.size());
  for (const Tensor& tensor : inputs) add(tensor, manager->mInputMap[slot], manager->mInputBuffers[slot], mInputMemory);
  for (const Tensor& tensor : outputs) {
    add(tensor, manager->mOutputMap[slot], manager->mOutputBuffers[slot], mOutputMemory);
  }
  // Maps are made even when empty, as a processing with no tensors of a kind would have them.
  if (manager->mInputMap[slot] == nullptr) manager->mInputMap[slot] = Snpe_UserBufferMap_Create();
  if (manager->mOutputMap[slot] == nullptr) manager->mOutputMap[slot] = Snpe_UserBufferMap_Create();
}

void SlotBuffers::add(const Tensor& tensor, Snpe_UserBufferMap_Handle_t& map,
                      std::vector<Snpe_IUserBuffer_Handle_t>& buffers, std::vector<std::vector<float>>& memory) {
  size_t elements = 1;
  for (size_t dim : tensor.dims) elements *= dim;
  memory.emplace_back(elements, 0.0f);

  // Packed byte strides, the last dimension fastest.
  std::vector<size_t> strides(tensor.dims.size());
  size_t stride = sizeof(float);
  for (size_t i = tensor.dims.size(); i-- > 0;) {
    strides[i] = stride;
    stride *= tensor.dims[i];
  }
  Snpe_TensorShape_Handle_t strideShape = Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size());
  Snpe_IUserBuffer_Handle_t buffer =
      Snpe_Util_CreateUserBuffer(memory.back().data(), elements * sizeof(float), strideShape, mEncoding);
  Snpe_TensorShape_Delete(strideShape);

  if (map == nullptr) map = Snpe_UserBufferMap_Create();
  Snpe_UserBufferMap_Add(map, tensor.name.c_str(), buffer);
  buffers.push_back(buffer);
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
