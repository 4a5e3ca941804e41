// Running a slot's network on its user-buffer maps, and what a processing may ask about it.
#include <cstdint>

#include "DlSystem/StringList.h"
#include "DlSystem/TensorShape.h"
#include "SNPEMgr.h"
#include "log/Log.h"

namespace tivora {

namespace {

size_t mapSize(Snpe_UserBufferMap_Handle_t map) { return map != nullptr ? Snpe_UserBufferMap_Size(map) : 0; }

// The index-th name of a user-buffer map; "" when the map or the name does not exist.
std::string bufferName(Snpe_UserBufferMap_Handle_t map, unsigned int index) {
  if (map == nullptr) return std::string();
  Snpe_StringList_Handle_t names = Snpe_UserBufferMap_GetUserBufferNames(map);
  if (names == nullptr) return std::string();
  const char* name = Snpe_StringList_At(names, index);
  std::string result = name != nullptr ? name : "";
  Snpe_StringList_Delete(names);
  return result;
}

}  // namespace

tvr_err_t SNPEMgr::execute(unsigned int id) {
  TivoraLogger* logger = processLogger();
  // A slot beyond the lock array has no lock to take; it gets the same messages unlocked.
  if (id >= mLocks.size() || id >= mSnpe.size() || id >= mInputMap.size() || id >= mOutputMap.size()) {
    TVR_LOG(logger, VERBOSE, "SNPEMgr", "execute", "[%d] Execute SNPE", id);
    TVR_LOG(logger, ERROR, "SNPEMgr", "execute", "Invarid class ID: %d", id);
    return TVR_ERR_NOT_FOUND;
  }
  std::lock_guard<std::mutex> guard(mLocks[id]);
  TVR_LOG(logger, VERBOSE, "SNPEMgr", "execute", "[%d] Execute SNPE", id);

  if (mSnpe[id] == nullptr) {
    // The message shows the truth of the test (0x1), not the handle: kept as users know it.
    TVR_LOG(logger, ERROR, "SNPEMgr", "execute", "[%d] SNPE instance(%p) is not available", id,
            reinterpret_cast<void*>(static_cast<uintptr_t>(mSnpe[id] == nullptr)));
    return TVR_ERR_NOT_FOUND;
  }
  if (mapSize(mInputMap[id]) == 0 || mapSize(mOutputMap[id]) == 0) {
    TVR_LOG(logger, ERROR, "SNPEMgr", "execute", "[%d] SNPE buffer(input(%d), output(%d)) is not available", id,
            static_cast<int>(mapSize(mInputMap[id])), static_cast<int>(mapSize(mOutputMap[id])));
    return TVR_ERR_NOT_FOUND;
  }
  if (Snpe_SNPE_ExecuteUserBuffers(mSnpe[id], mInputMap[id], mOutputMap[id]) != SNPE_SUCCESS) {
    TVR_LOG(logger, ERROR, "SNPEMgr", "execute", "[%d] SNPE execution failed(%s)", id,
            Snpe_ErrorCode_GetLastErrorString());
    return TVR_ERR_EXECUTE;
  }
  return TVR_OK;
}

std::string SNPEMgr::getModelVersion(unsigned int id) {
  if (id >= mLocks.size()) return std::string();
  std::lock_guard<std::mutex> guard(mLocks[id]);
  if (id >= mSnpe.size() || mSnpe[id] == nullptr) return std::string();
  const char* version = Snpe_SNPE_GetModelVersion(mSnpe[id]);
  return version != nullptr ? version : "";
}

std::string SNPEMgr::getInputBufferName(unsigned int id, unsigned int index) {
  if (id >= mLocks.size()) return std::string();
  std::lock_guard<std::mutex> guard(mLocks[id]);
  return bufferName(mInputMap[id], index);
}

std::string SNPEMgr::getOutputBufferName(unsigned int id, unsigned int index) {
  if (id >= mLocks.size()) return std::string();
  std::lock_guard<std::mutex> guard(mLocks[id]);
  return bufferName(mOutputMap[id], index);
}

unsigned long getBufferSize(void* shape) {
  const size_t* dimensions = Snpe_TensorShape_GetDimensions(shape);
  if (dimensions == nullptr) return 1;
  if (Snpe_TensorShape_Rank(shape) == 0) return 1;
  unsigned long size = 1;
  for (size_t i = 0; i < Snpe_TensorShape_Rank(shape); ++i) size *= dimensions[i];
  return size;
}

}  // namespace tivora
