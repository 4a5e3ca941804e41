// The process-wide owner of every neural network that processings use.
//
// Networks live in 40 numbered slots. A processing names its networks by index through
// TivoraBase (createSNPE, executeSNPE, ...), which maps resource type and index to a slot; the
// manager itself knows only slot numbers. Per slot it keeps the network, the parameters it was built
// from, the user-buffer maps that feed it, registered owners and a lock.
//
// Sharing: createSNPE with parameters equal to those of the slot's network reuses that network, so
// two processings asking for the same slot and parameters share one network. Different parameters
// delete the network first, then build anew; if that build fails the slot is left empty for every
// user of it.
//
// Ownership: the manager owns the networks. The user buffers and their maps (the public members
// below) belong to the processing that fills them: it creates them, adds them by tensor name,
// and deletes them when done; the manager only reads them.
//
// Threads: every operation on a slot holds that slot's lock for its whole duration, so an execution
// never overlaps a rebuild or deletion of the same network, and executions of one slot run one after
// the other; different slots run in parallel. registerOwner/unregisterOwner take no lock.
#pragma once

#include <array>
#include <list>
#include <mutex>
#include <string>
#include <vector>

#include "DlContainer/DlContainer.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPE/SNPE.h"
#include "SNPEParam.h"
#include "tvr_export.h"
#include "tvr_types.h"

namespace tivora {

class TVR_EXPORT SNPEMgr {
 public:
  // Kind of processing; each owns five consecutive slots (slot = type x 5 + network index).
  typedef uint32_t TVRResourceType;

 private:
  // Guards the creation of the instance and the runtime availability table. A slot lock may be
  // held while taking it, never the other way round.
  static std::mutex mSingleLock;
  static SNPEMgr* mpInstance;

  std::vector<Snpe_SNPE_Handle_t> mSnpe;  // the slot's network, or null
  std::vector<SNPEParam> mParams;         // what mSnpe[slot] was built from
  int32_t mRuntimeState[5];               // per tvr_runtime_t: 0 available, 1 not, 2 not yet checked

 public:
  std::vector<Snpe_UserBufferMap_Handle_t> mInputMap;                 // tensor name -> user buffer
  std::vector<std::vector<Snpe_IUserBuffer_Handle_t>> mInputBuffers;  // the buffers in mInputMap
  std::vector<Snpe_UserBufferMap_Handle_t> mOutputMap;
  std::vector<std::vector<Snpe_IUserBuffer_Handle_t>> mOutputBuffers;

 private:
  std::vector<std::list<unsigned long>> mOwners;
  std::array<std::mutex, 40> mLocks;

 public:
  // The process-wide manager, created by the first call. Never destroyed.
  static SNPEMgr* getInstance();

  virtual ~SNPEMgr();

  // Makes slot `id` hold a network built from `param` whose outputs are `outputLayers` (empty: the
  // model's own). Reuses the slot's network when `param` equals what it was built from.
  // Returns 0, or 1 (slot out of range), 2 (runtime not available), 4 (container not opened),
  // 5 (build failed) or 8 (model file unreadable); after a failure the slot is empty.
  tvr_err_t createSNPE(unsigned int id, SNPEParam& param, std::vector<std::string>& outputLayers);

  // Deletes the slot's network, whoever else uses it. Out-of-range slots are ignored.
  void deleteSNPE(unsigned int id);

  // Owner bookkeeping for processings; the manager itself never acts on it.
  void registerOwner(unsigned int id, unsigned long owner);    // appends, duplicates kept
  void unregisterOwner(unsigned int id, unsigned long owner);  // removes every occurrence

  // Runs the slot's network once on the slot's maps. Returns 0; 1 when the slot is out of range,
  // has no network, or an empty input or output map; 7 when the runtime reports a failure.
  tvr_err_t execute(unsigned int id);

  // The model version of the slot's network; empty when the slot is empty or out of range.
  std::string getModelVersion(unsigned int id);

  // Name of the index-th tensor in the slot's input (output) map. The map must exist and hold
  // more than `index` entries.
  std::string getInputBufferName(unsigned int id, unsigned int index);
  std::string getOutputBufferName(unsigned int id, unsigned int index);

 private:
  SNPEMgr();
  SNPEMgr(const SNPEMgr&) = delete;
  SNPEMgr& operator=(const SNPEMgr&) = delete;

  // True when the runtime can run networks; asks the NN runtime once per runtime and process.
  bool checkRuntime(tvr_runtime_t runtime);

  // Loads and builds one network; `err` must be 0 on entry and holds the status on return.
  Snpe_SNPE_Handle_t createSNPEInternal(SNPEParam& param, std::vector<std::string>& outputLayers, tvr_err_t& err);

  friend class TivoraBase;  // binds itself to the manager under mSingleLock
};

// Opens a model container by path, or from memory that the caller keeps owning; null on failure.
TVR_EXPORT Snpe_DlContainer_Handle_t loadContainer(std::string path);
TVR_EXPORT Snpe_DlContainer_Handle_t loadContainer(const unsigned char* buffer, unsigned long size);

// Number of elements of a tensor shape (product of its dimensions; 1 for rank 0).
TVR_EXPORT unsigned long getBufferSize(void* shape);

}  // namespace tivora
