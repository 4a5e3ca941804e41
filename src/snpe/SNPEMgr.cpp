// The manager's slots: creation of the instance, network reuse and deletion, owner bookkeeping.
#include "SNPEMgr.h"

#include <algorithm>

#include "log/Log.h"

namespace tivora {

std::mutex SNPEMgr::mSingleLock;
SNPEMgr* SNPEMgr::mpInstance = nullptr;

SNPEMgr::SNPEMgr()
    : mSnpe(40, nullptr),
      mParams(40),
      mRuntimeState{2, 2, 2, 2, 2},
      mInputMap(40, nullptr),
      mInputBuffers(40),
      mOutputMap(40, nullptr),
      mOutputBuffers(40),
      mOwners(40) {}

// Networks, maps and buffers are not released here: the instance lives as long as the process.
SNPEMgr::~SNPEMgr() = default;

SNPEMgr* SNPEMgr::getInstance() {
  std::lock_guard<std::mutex> guard(mSingleLock);
  if (mpInstance == nullptr) mpInstance = new SNPEMgr();
  return mpInstance;
}

tvr_err_t SNPEMgr::createSNPE(unsigned int id, SNPEParam& param, std::vector<std::string>& outputLayers) {
  // A slot beyond the lock array has no lock to take; it is refused before any locking.
  if (id >= mLocks.size()) {
    TVR_LOG(processLogger(), ERROR, "SnpeMgr", "createSNPE", "[%d] Id is SNPE size(%d) or over", id,
            static_cast<int>(mSnpe.size()));
    return TVR_ERR_NOT_FOUND;
  }
  std::lock_guard<std::mutex> guard(mLocks[id]);

  if (mSnpe[id] != nullptr && mParams[id] == param) {
    TVR_LOG(processLogger(), INFO, "SnpeMgr", "createSNPE", "[%d] SNPE instance has been created", id);
    return TVR_OK;
  }

  // The old network goes before the new one is built: a failed rebuild leaves the slot empty.
  Snpe_SNPE_Delete(mSnpe[id]);
  tvr_err_t status = TVR_OK;
  mSnpe[id] = createSNPEInternal(param, outputLayers, status);
  if (status == TVR_OK) mParams[id] = param;
  return status;
}

void SNPEMgr::deleteSNPE(unsigned int id) {
  if (id >= mLocks.size()) return;
  std::lock_guard<std::mutex> guard(mLocks[id]);
  Snpe_SNPE_Delete(mSnpe[id]);
  mSnpe[id] = nullptr;
  mParams[id] = SNPEParam();
}

void SNPEMgr::registerOwner(unsigned int id, unsigned long owner) {
  if (id >= mOwners.size()) return;
  mOwners[id].push_back(owner);
  TVR_LOG(processLogger(), DEBUG, "SNPEMgr", "registerOwner", "[%d] Register %lu", id, owner);
}

void SNPEMgr::unregisterOwner(unsigned int id, unsigned long owner) {
  if (id >= mOwners.size()) return;
  mOwners[id].remove(owner);
  TVR_LOG(processLogger(), DEBUG, "SNPEMgr", "unregisterOwner", "[%d] UnRegister %lu", id, owner);
}

}  // namespace tivora
