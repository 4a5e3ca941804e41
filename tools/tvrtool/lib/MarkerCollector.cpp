#include "MarkerCollector.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "MonotonicClock.h"

namespace tvrtool {

namespace {

constexpr size_t kReadSize = 4096;
constexpr size_t kBytesPerMarker = 64;  // "B|<pid>|MeanColourProcessing::initialize()|0" and a margin

void closeFd(int& fd) {
  if (fd != -1) close(fd);
  fd = -1;
}

}  // namespace

std::unique_ptr<MarkerCollector> MarkerCollector::start(const std::string& path, size_t expectedMarkers,
                                                        std::string& error) {
  std::unique_ptr<MarkerCollector> collector(new MarkerCollector);
  std::error_code code;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), code);
  std::filesystem::remove(path, code);
  if (mkfifo(path.c_str(), 0600) != 0) {
    error = "cannot make the trace FIFO " + path + ": " + std::strerror(errno);
    return nullptr;
  }
  collector->mPath = path;
  collector->mReadFd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (collector->mReadFd != -1) collector->mKeepOpenFd = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (collector->mKeepOpenFd == -1 || pipe2(collector->mWakeFds, O_CLOEXEC) != 0) {
    error = "cannot open the trace FIFO " + path + ": " + std::strerror(errno);
    return nullptr;
  }
  collector->mBytes.resize(expectedMarkers * kBytesPerMarker + kReadSize);
  collector->mReads.reserve(expectedMarkers);
  collector->mStartNs = monotonicNanoseconds();
  collector->mThread = std::thread(&MarkerCollector::loop, collector.get());
  return collector;
}

// Reads everything the FIFO holds now.
void MarkerCollector::drain() {
  for (;;) {
    if (mBytes.size() - mUsed < kReadSize) mBytes.resize(mBytes.size() * 2);
    const ssize_t got = read(mReadFd, mBytes.data() + mUsed, kReadSize);
    if (got <= 0) {
      if (got < 0 && errno == EINTR) continue;
      return;
    }
    mReads.push_back({mUsed, monotonicNanoseconds()});
    mUsed += static_cast<size_t>(got);
  }
}

void MarkerCollector::loop() {
  pollfd fds[2] = {{mReadFd, POLLIN, 0}, {mWakeFds[0], POLLIN, 0}};
  for (;;) {
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    drain();
    if (fds[1].revents != 0) return;  // stop() asked; the FIFO is drained
  }
}

void MarkerCollector::stop() {
  if (!mThread.joinable()) return;
  const char wake = 1;
  while (write(mWakeFds[1], &wake, 1) < 0 && errno == EINTR) {
  }
  mThread.join();
}

MarkerCollector::~MarkerCollector() {
  stop();
  closeFd(mReadFd);
  closeFd(mKeepOpenFd);
  closeFd(mWakeFds[0]);
  closeFd(mWakeFds[1]);
  if (!mPath.empty()) unlink(mPath.c_str());
}

}  // namespace tvrtool
