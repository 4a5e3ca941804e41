// Networks in the manager's slots for tests: model files on the test device, and float user
// buffers registered in a slot's maps the way a processing registers them.
#pragma once

#include <string>
#include <vector>

#include "DlSystem/UserBufferMap.h"
#include "SNPEMgr.h"
#include "SNPEParam.h"

namespace tivora::test {

// The mean of each channel of a 1x4x5x3 input "image", as the output "mean" (1x3).
inline constexpr const char kMeanModel[] =
    "TIVORA-HOST-DLC 1\nversion: mean-colour-1.0\ninput: image 1x4x5x3\noutput: mean 1x3\nop: channel_mean\n";

// Writes a model file under the test device's camera directory; returns its path.
std::string writeModel(const std::string& name, const std::string& text);

// Parameters of a network of the model at `path`, on the CPU, with user buffers; and the host's
// create record of that one model.
SNPEParam paramFor(const std::string& path);
tvr_create_param_t createRecordFor(const std::string& path);

// The mean model's float buffers in a slot's maps and buffer lists: the input, and the output
// unless `withOutput` is false (its map is then empty). Removed and deleted on destruction.
class SlotBuffers {
 public:
  SlotBuffers(SNPEMgr* manager, unsigned int slot, bool withOutput = true);
  ~SlotBuffers();
  SlotBuffers(const SlotBuffers&) = delete;
  SlotBuffers& operator=(const SlotBuffers&) = delete;

  std::vector<float> image = std::vector<float>(60);
  std::vector<float> mean = std::vector<float>(3);

 private:
  void add(Snpe_UserBufferMap_Handle_t map, std::vector<Snpe_IUserBuffer_Handle_t>& buffers, const char* name,
           std::vector<float>& memory, std::vector<size_t> strides);

  SNPEMgr* mManager;
  unsigned int mSlot;
  Snpe_UserBufferEncoding_Handle_t mEncoding;
};

}  // namespace tivora::test
