// Networks in the manager's slots for tests: model files on the test device, and float user
// buffers registered in a slot's maps the way a processing registers them.
#pragma once

#include <string>
#include <vector>

#include "DlSystem/IUserBuffer.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPEMgr.h"
#include "SNPEParam.h"

namespace tivora::test {

// Per-channel mean of a 4x5 image of 3 channels.
inline constexpr const char kMeanModel[] =
    "TIVORA-HOST-DLC 1\nversion: mean-colour-1.0\ninput: image 1x4x5x3\noutput: mean 1x3\nop: channel_mean\n";
// Does nothing.
inline constexpr const char kNoneModel[] = "TIVORA-HOST-DLC 1\nversion: none-0\ninput: in 4\noutput: out 4\nop: none\n";

// Writes a model file under the test device's camera directory; returns its path.
std::string writeModel(const std::string& name, const std::string& text);

// Parameters of a network of the model at `path`, on the CPU, with user buffers.
SNPEParam paramFor(const std::string& path);

// One float tensor: its name in the model and its dimensions.
struct Tensor {
  std::string name;
  std::vector<size_t> dims;
};

// Owns float memory and the user buffers over it, put into the slot's maps and buffer lists;
// removes and deletes them all again on destruction.
class SlotBuffers {
 public:
  SlotBuffers(SNPEMgr* manager, unsigned int slot, const std::vector<Tensor>& inputs,
              const std::vector<Tensor>& outputs);
  ~SlotBuffers();
  SlotBuffers(const SlotBuffers&) = delete;
  SlotBuffers& operator=(const SlotBuffers&) = delete;

  std::vector<float>& input(size_t i) { return mInputMemory[i]; }
  std::vector<float>& output(size_t i) { return mOutputMemory[i]; }

 private:
  void add(const Tensor& tensor, Snpe_UserBufferMap_Handle_t& map, std::vector<Snpe_IUserBuffer_Handle_t>& buffers,
           std::vector<std::vector<float>>& memory);

  SNPEMgr* mManager;
  unsigned int mSlot;
  Snpe_UserBufferEncoding_Handle_t mEncoding;
  std::vector<std::vector<float>> mInputMemory;
  std::vector<std::vector<float>> mOutputMemory;
};

}  // namespace tivora::test
