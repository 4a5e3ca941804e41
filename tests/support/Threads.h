// Work on several threads at once, for the concurrency cases (which the tsan build runs under
// ThreadSanitizer).
#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace tivora::test {

// Runs `work(t)` for t = 0 .. n - 1, each on a thread of its own, all let go together; returns when
// every one has finished.
template <typename Work>
void onThreads(unsigned int n, Work work) {
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (unsigned int t = 0; t < n; ++t) {
    threads.emplace_back([&go, &work, t] {
      while (!go) std::this_thread::yield();
      work(t);
    });
  }
  go = true;
  for (auto& thread : threads) thread.join();
}

}  // namespace tivora::test
