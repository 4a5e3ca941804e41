// A processing's networks by index: the slot of (resource type, index) in the manager.
#include "TivoraBase.h"
#include "log/Log.h"

namespace tivora {

// Indices from 5 on all reach slot 5 of the block, which is the next type's first slot; processings
// rely on it staying so.
unsigned int TivoraBase::slotOf(unsigned int index) const { return mResourceType * 5u + (index < 5u ? index : 5u); }

std::string TivoraBase::getModelVersion(unsigned int index) {
  return mpSNPEMgr != nullptr ? mpSNPEMgr->getModelVersion(slotOf(index)) : std::string();
}

std::string TivoraBase::getInputBufferName(unsigned int index, unsigned int n) {
  return mpSNPEMgr != nullptr ? mpSNPEMgr->getInputBufferName(slotOf(index), n) : std::string();
}

std::string TivoraBase::getOutputBufferName(unsigned int index, unsigned int n) {
  return mpSNPEMgr != nullptr ? mpSNPEMgr->getOutputBufferName(slotOf(index), n) : std::string();
}

tvr_err_t TivoraBase::createSNPE(unsigned int index, SNPEParam& param, std::vector<std::string>& outputLayers) {
  if (mpSNPEMgr == nullptr) {
    TVR_LOG(TivoraLogger::getInstance(), ERROR, "SNPEMgr", "createSNPE", "[%d] SNPE Mgr is null", index);
    return TVR_ERR_NOT_FOUND;
  }
  return mpSNPEMgr->createSNPE(slotOf(index), param, outputLayers);
}

tvr_err_t TivoraBase::executeSNPE(unsigned int index) {
  if (mpSNPEMgr == nullptr) {
    TVR_LOG(TivoraLogger::getInstance(), ERROR, "SNPEMgr", "executeSNPE", "[%d] SNPE Mgr is null", index);
    return TVR_ERR_NOT_FOUND;
  }
  return mpSNPEMgr->execute(slotOf(index));
}

void TivoraBase::deleteSNPE(unsigned int index) {
  if (mpSNPEMgr != nullptr) mpSNPEMgr->deleteSNPE(slotOf(index));
}

}  // namespace tivora
