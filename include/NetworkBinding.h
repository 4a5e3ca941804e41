// Float buffers of a processing, bound by tensor name to one of its networks and checked against it
// when the processing sets up, not on the first frame.
//
//   class MyProcessing : public tivora::TivoraBase {
//     std::vector<float> mImage = std::vector<float>(224 * 224 * 3), mScores = std::vector<float>(1000);
//     tivora::NetworkBinding mBinding{mResourceType, 0};      // network index 0 of this processing
//
//     tvr_err_t setupImpl(const void* p) override {
//       ... createSNPE(0, param, layers) ...
//       mBinding.addInput("image", mImage.data(), {1, 224, 224, 3});
//       mBinding.addOutput("scores", mScores.data(), {1, 1000});
//       return mBinding.bind();                                 // 0, or why not, logged at ERROR
//     }
//     // applyImpl: write mImage, executeSNPE(0), read mScores.
//     void teardownImpl() override { mBinding.release(); deleteSNPE(0); }
//   };
//
// The binding finds the slot from the resource type and index as TivoraBase does (type x 5 +
// min(index, 5)), makes the float encoding, a user buffer per tensor (packed, the last dimension
// fastest, in the device layout: images N x H x W x C) and both maps, and registers them in the
// manager's slot (mInputMap, mInputBuffers, mOutputMap, mOutputBuffers). The memory stays the
// processing's and must outlive the binding.
//
// bind() holds the slot's lock while it checks and registers, so another processing rebuilding or
// running the same slot waits for it. It returns
//   0   bound;
//   1   the slot is out of range or has no network, a buffer names a tensor the network lacks, a
//       tensor of the network has no buffer, or the runtime would not make an object;
//   12  a buffer's dimensions differ from its input tensor's, an output buffer does not fit its
//       tensor, two buffers name one tensor, a buffer has no memory or no dimensions, or the slot
//       already holds another binding's maps.
// Every failure is logged at ERROR with the tensor's name and leaves nothing registered or alive.
// The runtime tells input dimensions but not output ones: bind() runs the network once on the
// input buffers as they are, and the runtime's check of every buffer refuses an output that does
// not fit (its reason, naming the tensor, is in the message). The output buffers are written.
//
// release() (teardown; also the destructor and the start of bind) takes the maps out of the slot
// and deletes every runtime object the binding made, and forgets the buffers added. Safe to call
// any number of times. A binding belongs to one processing and is used from its thread.
#pragma once

#include <string>
#include <vector>

#include "DlSystem/IUserBuffer.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPEMgr.h"
#include "tvr_export.h"
#include "tvr_types.h"

namespace tivora {

class TVR_EXPORT NetworkBinding {
 public:
  // Network `index` of a processing of `resourceType`.
  NetworkBinding(SNPEMgr::TVRResourceType resourceType, unsigned int index);
  ~NetworkBinding();
  NetworkBinding(const NetworkBinding&) = delete;
  NetworkBinding& operator=(const NetworkBinding&) = delete;

  // Names the float memory of a tensor and its dimensions; checked by bind().
  void addInput(std::string tensor, float* data, std::vector<size_t> dims);
  void addOutput(std::string tensor, float* data, std::vector<size_t> dims);

  tvr_err_t bind();
  void release();

  // What the slot's network tells, asked under the slot's lock, for sizing buffers before they are
  // added: an input tensor's dimensions (device layout) and the names of its outputs. Empty when
  // the slot is out of range or has no network, or the network has no such input.
  std::vector<size_t> inputDimensions(const std::string& tensor) const;
  std::vector<std::string> outputNames() const;

  unsigned int slot() const { return mSlot; }
  bool isBound() const { return mInputMap != nullptr; }

 private:
  struct Buffer {
    std::string tensor;
    float* data;
    std::vector<size_t> dims;
    Snpe_IUserBuffer_Handle_t handle;
  };

  tvr_err_t check(Snpe_SNPE_Handle_t network);
  bool makeRuntimeObjects();
  void deleteRuntimeObjects();

  unsigned int mSlot;
  std::vector<Buffer> mInputs;
  std::vector<Buffer> mOutputs;
  Snpe_UserBufferEncoding_Handle_t mEncoding = nullptr;
  Snpe_UserBufferMap_Handle_t mInputMap = nullptr;
  Snpe_UserBufferMap_Handle_t mOutputMap = nullptr;
};

}  // namespace tivora
