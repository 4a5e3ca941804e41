// One slot of the network manager, locked, for the library's extensions that are not members of
// SNPEMgr (NetworkBinding). Holding a SlotLock is what every member operation on the slot does: an
// execution, a rebuild or a deletion of the slot's network waits until it is gone.
#pragma once

#include <mutex>

#include "SNPEMgr.h"

namespace tivora::detail {

class SlotLock {
 public:
  // `slot` must be below the manager's 40.
  SlotLock(SNPEMgr& manager, unsigned int slot);

  // The slot's network, or null; valid while the lock is held.
  Snpe_SNPE_Handle_t network() const { return mNetwork; }

 private:
  std::lock_guard<std::mutex> mGuard;
  Snpe_SNPE_Handle_t mNetwork;
};

}  // namespace tivora::detail
