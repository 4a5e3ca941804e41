// SNPEMgr keeps its networks and slot locks private, and its declaration is fixed: no accessor, no
// new friend. An explicit instantiation may name a private member (access checking does not apply
// to the names in one), and a friend function that the instantiation defines hands the member
// pointer out. The trick stays in this file, read only through SlotLock, under the slot's lock.
#include "snpe/SlotAccess.h"

#include <array>
#include <vector>

namespace tivora::detail {
namespace {

template <typename Tag, typename Tag::Member kMember>
struct Expose {
  friend typename Tag::Member memberOf(Tag) { return kMember; }
};

struct Networks {
  using Member = std::vector<Snpe_SNPE_Handle_t> SNPEMgr::*;
  friend Member memberOf(Networks);
};
struct Locks {
  using Member = std::array<std::mutex, 40> SNPEMgr::*;
  friend Member memberOf(Locks);
};

template struct Expose<Networks, &SNPEMgr::mSnpe>;
template struct Expose<Locks, &SNPEMgr::mLocks>;

}  // namespace

SlotLock::SlotLock(SNPEMgr& manager, unsigned int slot)
    : mGuard((manager.*memberOf(Locks{})).at(slot)), mNetwork((manager.*memberOf(Networks{}))[slot]) {}

}  // namespace tivora::detail
