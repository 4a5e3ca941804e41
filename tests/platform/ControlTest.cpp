// The stand-in's counts that the library's cases read: live objects, which outlast reset(), and
// executions in progress. (Scripted failures: every case that injects one checks its effect.)
#include <chrono>
#include <string>

#include "StandIn.h"
#include "Threads.h"

namespace standin {
namespace {

using snpe_stub::Kind;

class ControlTest : public StandInTest {};

TEST_F(ControlTest, LiveCountsFollowEveryKindAndSurviveReset) {
  {
    Network network = build(kCopyModel);
    std::vector<float> memory(4);
    UserBuffer buffer = packedBuffer(memory, {4});
    snpe_stub::reset();
    EXPECT_EQ(snpe_stub::liveCount(Kind::Network) + snpe_stub::liveCount(Kind::UserBuffer), 2);
    EXPECT_EQ(snpe_stub::liveCount(), 2) << "the builder, container, shape and encoding are gone";
  }
  EXPECT_EQ(snpe_stub::liveCount(), 0);
}

// Runs each of `networks` `times` times on a thread of its own, all threads starting together. The
// operator is none: the threads share the buffers but do not touch them.
void runTogether(const std::vector<Snpe_SNPE_Handle_t>& networks, int times) {
  std::vector<float> memory(4);
  UserBuffer buffer = packedBuffer(memory, {4});
  BufferMap inputs = bufferMap({{"in", &buffer}});
  BufferMap outputs = bufferMap({{"out", &buffer}});
  tivora::test::onThreads(static_cast<unsigned int>(networks.size()), [&](unsigned int t) {
    for (int i = 0; i < times; ++i) {
      EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(networks[t], inputs.get(), outputs.get()), SNPE_SUCCESS);
    }
  });
}

TEST_F(ControlTest, CountsExecutionsInProgressOverallAndPerNetwork) {
  Network a = build(kNoneModel);
  Network b = build(kNoneModel);
  snpe_stub::setExecuteDelay(std::chrono::milliseconds(30));

  // One thread per network: the networks overlap, each one alone never does. A loaded machine
  // may start the second thread late, so try a few times.
  for (int round = 0; round < 10 && snpe_stub::maxConcurrentExecutions() < 2; ++round) {
    runTogether({a.get(), b.get()}, 3);
  }
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(), 2);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 1);

  snpe_stub::reset();

  // Two threads on one network: the runtime does not serialise them, the counters show it.
  snpe_stub::setExecuteDelay(std::chrono::milliseconds(30));
  for (int round = 0; round < 10 && snpe_stub::maxConcurrentExecutionsOfOneNetwork() < 2; ++round) {
    runTogether({a.get(), a.get()}, 3);
  }
  EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 2);
}

}  // namespace
}  // namespace standin
