// Test control of the host stand-in of the image library (libfastcvopt.so from platform/fastcv).
// Exists only in the stand-in; a build against the vendor SDK has no such header.
//
// Every function is thread-safe and may be called while the library is in use on other threads.
//
// What the stand-in computes (the vendor's exact arithmetic is not known): libyuv's, for this
// build's architecture.
// - fcvMemAlloc refuses an alignment that is zero, not a power of two or above 128, and requests
//   above kMaxAllocation bytes; it returns null then.
// - Scale down: libyuv's box filter (area averaging). Scale up: its bilinear filter.
// - Rotate: clockwise; a quarter turn of interleaved CbCr goes through per-thread scratch planes.
// - Colour: BT.601 video range (Y 16..235, C 16..240). With an odd width or height the chroma
//   plane holds width / 2 pairs and height / 2 rows (at least one of each); the last luma column
//   or row reuses the last chroma pair or row.
// - libyuv allocates a row of its own in some scaling calls (no call of it takes the caller's
//   scratch); everything else allocates nothing once a thread has seen a frame of that size.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fastcv_stub {

// Largest request fcvMemAlloc grants.
constexpr std::uint64_t kMaxAllocation = std::uint64_t{1} << 30;

// What fcvSetOperationMode returns from now on (0 at load: success).
void setOperationModeResult(int result);

// Every mode fcvSetOperationMode was called with, in order.
std::vector<int> operationModeCalls();

// One call of the library's C interface, as the stand-in saw it.
struct Call {
  std::string name;  // C function name, e.g. "fcvRotateImageu8"
  std::string args;  // arguments in declaration order, separated by ", ": numbers and
                     // enumerations in decimal, pointers as printf's %p writes them
};

// Every call of an fcv* function since the last reset(), in order.
std::vector<Call> journal();

// Journaling is on at load. Off, calls are neither recorded nor formatted (for benchmarks, which
// must not count the journal's own allocations).
void setJournaling(bool on);

// Forgets the journal and any fcvMemAlloc failure script. Memory handed out stays valid.
void reset();

// The next `times` calls of fcvMemAlloc return null (they are journalled like any other); a
// negative `times` makes every call fail, zero removes the script.
void failMemAlloc(int times);

// Blocks from fcvMemAlloc not yet given to fcvMemFree.
int liveAllocations();

}  // namespace fastcv_stub
