// Collects the library's trace markers while a processing runs: the trace_marker path becomes a
// FIFO whose read end a thread drains, time-stamping each read on arrival.
//
// A marker is one write of at most 255 bytes, so it reaches the FIFO whole; a read may hold
// several markers, and a marker may be cut between two reads (parseMarkers puts it together).
// The thread only appends to memory reserved up front, so it adds no allocation to the frames.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "TraceEvents.h"

namespace tvrtool {

class MarkerCollector {
 public:
  // Replaces whatever lies at `path` by a FIFO, opens its read end (before the library can open
  // the write end: the library's blocking open then succeeds at once) and starts the thread.
  // `expectedMarkers` sizes the reserved memory. Null and `error` when that fails.
  static std::unique_ptr<MarkerCollector> start(const std::string& path, size_t expectedMarkers, std::string& error);

  // Stops the thread after draining what the FIFO holds; the markers are then readable.
  void stop();
  ~MarkerCollector();  // stops, closes and removes the FIFO

  std::string_view text() const { return {mBytes.data(), mUsed}; }
  const std::vector<MarkerRead>& reads() const { return mReads; }
  int64_t startTimeNs() const { return mStartNs; }

  MarkerCollector(const MarkerCollector&) = delete;
  MarkerCollector& operator=(const MarkerCollector&) = delete;

 private:
  MarkerCollector() = default;
  void drain();
  void loop();

  std::string mPath;
  int mReadFd = -1;
  int mKeepOpenFd = -1;  // our own writer: the FIFO never reports hang-up when the library closes
  int mWakeFds[2] = {-1, -1};
  std::thread mThread;
  std::vector<char> mBytes;
  size_t mUsed = 0;
  std::vector<MarkerRead> mReads;
  int64_t mStartNs = 0;
};

}  // namespace tvrtool
