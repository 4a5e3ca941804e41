#include "NetworkBinding.h"

#include <algorithm>

#include "DlSystem/DlError.h"
#include "DlSystem/StringList.h"
#include "DlSystem/TensorShape.h"
#include "SNPE/SNPE.h"
#include "SNPE/SNPEUtil.h"
#include "log/Log.h"
#include "snpe/SlotAccess.h"

namespace tivora {

namespace {

constexpr char kTag[] = "NetworkBinding";
constexpr unsigned int kSlots = 40;

std::string shapeText(const std::vector<size_t>& dims) {
  std::string text;
  for (size_t dim : dims) text += (text.empty() ? "" : "x") + std::to_string(dim);
  return text.empty() ? "of unknown dimensions" : text;
}

// The strings of a list the runtime handed out, which is deleted.
std::vector<std::string> takeStrings(Snpe_StringList_Handle_t list) {
  std::vector<std::string> strings;
  for (size_t i = 0; list != nullptr && i < Snpe_StringList_Size(list); ++i)
    strings.emplace_back(Snpe_StringList_At(list, i));
  if (list != nullptr) Snpe_StringList_Delete(list);
  return strings;
}

std::vector<size_t> inputDims(Snpe_SNPE_Handle_t network, const std::string& tensor) {
  Snpe_TensorShape_Handle_t shape = Snpe_SNPE_GetInputDimensions(network, tensor.c_str());
  std::vector<size_t> dims;
  for (size_t i = 0; shape != nullptr && i < Snpe_TensorShape_Rank(shape); ++i)
    dims.push_back(Snpe_TensorShape_At(shape, i));
  if (shape != nullptr) Snpe_TensorShape_Delete(shape);
  return dims;
}

// Packed byte strides, the last dimension fastest.
std::vector<size_t> packedStrides(const std::vector<size_t>& dims, size_t& bytes) {
  std::vector<size_t> strides(dims.size());
  bytes = sizeof(float);
  for (size_t i = dims.size(); i-- > 0;) {
    strides[i] = bytes;
    bytes *= dims[i];
  }
  return strides;
}

}  // namespace

NetworkBinding::NetworkBinding(SNPEMgr::TVRResourceType resourceType, unsigned int index)
    : mSlot(resourceType * 5u + std::min(index, 5u)) {}

NetworkBinding::~NetworkBinding() { release(); }

void NetworkBinding::addInput(std::string tensor, float* data, std::vector<size_t> dims) {
  mInputs.push_back(Buffer{std::move(tensor), data, std::move(dims), nullptr});
}

void NetworkBinding::addOutput(std::string tensor, float* data, std::vector<size_t> dims) {
  mOutputs.push_back(Buffer{std::move(tensor), data, std::move(dims), nullptr});
}

tvr_err_t NetworkBinding::bind() {
  std::vector<Buffer> inputs = std::move(mInputs), outputs = std::move(mOutputs);
  release();
  mInputs = std::move(inputs);
  mOutputs = std::move(outputs);
  if (mSlot >= kSlots) {
    TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] No such network slot", mSlot);
    return TVR_ERR_NOT_FOUND;
  }
  SNPEMgr& manager = *SNPEMgr::getInstance();
  detail::SlotLock slot(manager, mSlot);
  if (slot.network() == nullptr) {
    TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The slot has no network to bind buffers to", mSlot);
    return TVR_ERR_NOT_FOUND;
  }
  if (manager.mInputMap[mSlot] != nullptr || manager.mOutputMap[mSlot] != nullptr) {
    TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The slot already holds the user buffers of another binding",
            mSlot);
    return TVR_ERR_INVALID_ARG;
  }
  if (const tvr_err_t status = check(slot.network()); status != TVR_OK) return status;
  if (!makeRuntimeObjects()) {
    TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The runtime would not make the user buffers (%s)", mSlot,
            Snpe_ErrorCode_GetLastErrorString());
    deleteRuntimeObjects();
    return TVR_ERR_NOT_FOUND;
  }
  // The one check left is the outputs': the runtime makes it on every execution.
  if (Snpe_SNPE_ExecuteUserBuffers(slot.network(), mInputMap, mOutputMap) != SNPE_SUCCESS) {
    TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The buffers do not fit the network: %s", mSlot,
            Snpe_ErrorCode_GetLastErrorString());
    deleteRuntimeObjects();
    return TVR_ERR_INVALID_ARG;
  }
  manager.mInputMap[mSlot] = mInputMap;
  manager.mOutputMap[mSlot] = mOutputMap;
  for (const Buffer& buffer : mInputs) manager.mInputBuffers[mSlot].push_back(buffer.handle);
  for (const Buffer& buffer : mOutputs) manager.mOutputBuffers[mSlot].push_back(buffer.handle);
  return TVR_OK;
}

// Names, then the input dimensions the runtime tells; both lists must be covered, once each.
tvr_err_t NetworkBinding::check(Snpe_SNPE_Handle_t network) {
  const std::vector<std::string> names[2] = {takeStrings(Snpe_SNPE_GetInputTensorNames(network)),
                                             takeStrings(Snpe_SNPE_GetOutputTensorNames(network))};
  const std::vector<Buffer>* buffers[2] = {&mInputs, &mOutputs};
  const char* roles[2] = {"input", "output"};
  for (int k = 0; k < 2; ++k) {
    for (const Buffer& buffer : *buffers[k]) {
      const char* tensor = buffer.tensor.c_str();
      if (std::find(names[k].begin(), names[k].end(), buffer.tensor) == names[k].end()) {
        TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The network has no %s tensor '%s'", mSlot, roles[k],
                tensor);
        return TVR_ERR_NOT_FOUND;
      }
      const auto named = [&](const Buffer& other) { return other.tensor == buffer.tensor; };
      if (buffer.data == nullptr || buffer.dims.empty() ||
          std::count_if(buffers[k]->begin(), buffers[k]->end(), named) > 1) {
        TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The %s buffer of tensor '%s' is %s", mSlot, roles[k],
                tensor,
                buffer.data == nullptr ? "null"
                : buffer.dims.empty()  ? "without dimensions"
                                       : "given twice");
        return TVR_ERR_INVALID_ARG;
      }
      const std::vector<size_t> dims = k == 0 ? inputDims(network, buffer.tensor) : buffer.dims;
      if (dims != buffer.dims) {
        TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] Input tensor '%s' is %s, its buffer %s", mSlot, tensor,
                shapeText(dims).c_str(), shapeText(buffer.dims).c_str());
        return TVR_ERR_INVALID_ARG;
      }
    }
    for (const std::string& name : names[k]) {
      if (std::none_of(buffers[k]->begin(), buffers[k]->end(), [&](const Buffer& b) { return b.tensor == name; })) {
        TVR_LOG(processLogger(), ERROR, kTag, "bind", "[%u] The %s tensor '%s' has no buffer", mSlot, roles[k],
                name.c_str());
        return TVR_ERR_NOT_FOUND;
      }
    }
  }
  return TVR_OK;
}

bool NetworkBinding::makeRuntimeObjects() {
  mEncoding = Snpe_UserBufferEncodingFloat_Create();
  mInputMap = Snpe_UserBufferMap_Create();
  mOutputMap = Snpe_UserBufferMap_Create();
  if (mEncoding == nullptr || mInputMap == nullptr || mOutputMap == nullptr) return false;
  for (auto [list, map] : {std::pair{&mInputs, mInputMap}, std::pair{&mOutputs, mOutputMap}}) {
    for (Buffer& buffer : *list) {
      size_t bytes = 0;
      const std::vector<size_t> strides = packedStrides(buffer.dims, bytes);
      Snpe_TensorShape_Handle_t shape = Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size());
      buffer.handle = shape != nullptr ? Snpe_Util_CreateUserBuffer(buffer.data, bytes, shape, mEncoding) : nullptr;
      if (shape != nullptr) Snpe_TensorShape_Delete(shape);
      if (buffer.handle == nullptr ||
          Snpe_UserBufferMap_Add(map, buffer.tensor.c_str(), buffer.handle) != SNPE_SUCCESS) {
        return false;
      }
    }
  }
  return true;
}

void NetworkBinding::deleteRuntimeObjects() {
  for (Snpe_UserBufferMap_Handle_t* map : {&mInputMap, &mOutputMap}) {
    if (*map != nullptr) Snpe_UserBufferMap_Delete(*map);
    *map = nullptr;
  }
  for (auto* list : {&mInputs, &mOutputs}) {
    for (Buffer& buffer : *list) {
      if (buffer.handle != nullptr) Snpe_IUserBuffer_Delete(buffer.handle);
      buffer.handle = nullptr;
    }
  }
  if (mEncoding != nullptr) Snpe_UserBufferEncodingFloat_Delete(mEncoding);
  mEncoding = nullptr;
}

std::vector<size_t> NetworkBinding::inputDimensions(const std::string& tensor) const {
  if (mSlot >= kSlots) return {};
  detail::SlotLock slot(*SNPEMgr::getInstance(), mSlot);
  return slot.network() != nullptr ? inputDims(slot.network(), tensor) : std::vector<size_t>{};
}

std::vector<std::string> NetworkBinding::outputNames() const {
  if (mSlot >= kSlots) return {};
  detail::SlotLock slot(*SNPEMgr::getInstance(), mSlot);
  return slot.network() != nullptr ? takeStrings(Snpe_SNPE_GetOutputTensorNames(slot.network()))
                                   : std::vector<std::string>{};
}

void NetworkBinding::release() {
  if (isBound() && mSlot < kSlots) {
    SNPEMgr& manager = *SNPEMgr::getInstance();
    detail::SlotLock slot(manager, mSlot);
    for (auto [map, ours] :
         {std::pair{&manager.mInputMap[mSlot], mInputMap}, {&manager.mOutputMap[mSlot], mOutputMap}}) {
      if (*map == ours) *map = nullptr;
    }
    for (auto [registered, list] :
         {std::pair{&manager.mInputBuffers[mSlot], &mInputs}, std::pair{&manager.mOutputBuffers[mSlot], &mOutputs}}) {
      for (const Buffer& buffer : *list)
        registered->erase(std::remove(registered->begin(), registered->end(), buffer.handle), registered->end());
    }
  }
  deleteRuntimeObjects();
  mInputs.clear();
  mOutputs.clear();
}

}  // namespace tivora
