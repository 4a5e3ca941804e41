// The manager under the host's threads: many threads create, reuse, rebuild, execute and delete
// networks on shared and on private slots, register owners and probe runtimes at once. Run under
// ThreadSanitizer by the tsan build. Every case runs in a fresh process (the runtime probe and the
// manager are process-wide).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "SNPEMgr.h"
#include "SlotNetworks.h"
#include "TivoraLogger.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::SNPEMgr;
using tivora::SNPEParam;
using tivora::test::SlotBuffers;

constexpr int kThreads = 8;

template <typename Work>
void onThreads(int count, Work work) {
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < count; ++t) {
    threads.emplace_back([&go, &work, t] {
      while (!go.load()) std::this_thread::yield();
      work(t);
    });
  }
  go = true;
  for (auto& thread : threads) thread.join();
}

class NetworkStressTest : public tivora::test::DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    model_ = tivora::test::writeModel("mean.dlc", tivora::test::kMeanModel);
  }

  template <typename Body>
  void run(Body body) {
    tivora::test::inFreshProcess([&] {
      tivora::TivoraLogger::getInstance()->setLogLevel(tivora::TivoraLogger::TVR_LOG_WARN);
      snpe_stub::reset();
      snpe_stub::setJournaling(false);
      body(SNPEMgr::getInstance(), tivora::test::paramFor(model_));
    });
  }

  std::string model_;
};

// Shared slots 0..2 and one private slot per thread (10 + thread); owners on private slots only.
TEST_F(NetworkStressTest, MixedOperationsOnSharedAndPrivateSlots) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::unique_ptr<SlotBuffers>> buffers;
    for (unsigned int slot : {0u, 1u, 2u}) {
      buffers.push_back(std::make_unique<SlotBuffers>(manager, slot,
                                                      std::vector<tivora::test::Tensor>{{"image", {1, 4, 5, 3}}},
                                                      std::vector<tivora::test::Tensor>{{"mean", {1, 3}}}));
    }
    for (unsigned int t = 0; t < kThreads; ++t) {
      buffers.push_back(std::make_unique<SlotBuffers>(manager, 10 + t,
                                                      std::vector<tivora::test::Tensor>{{"image", {1, 4, 5, 3}}},
                                                      std::vector<tivora::test::Tensor>{{"mean", {1, 3}}}));
    }
    SNPEParam other = param;
    other.debug_mode = true;  // a second set of parameters: switching between them rebuilds
    std::atomic<int> unexpected{0};
    std::atomic<int> executed{0};

    onThreads(kThreads, [&](int t) {
      std::mt19937 random(static_cast<unsigned int>(t) * 7919u + 1u);
      const unsigned int own = 10u + static_cast<unsigned int>(t);
      std::vector<std::string> layers;
      for (int i = 0; i < 600; ++i) {
        const unsigned int slot = random() % 4 == 0 ? own : static_cast<unsigned int>(random() % 3);
        SNPEParam request = random() % 2 == 0 ? param : other;
        switch (random() % 6) {
          case 0:
          case 1:
            if (manager->createSNPE(slot, request, layers) != 0) ++unexpected;
            break;
          case 2:
          case 3: {
            const tvr_err_t status = manager->execute(slot);
            if (status == 0) ++executed;
            if (status != 0 && status != 1) ++unexpected;  // 1: another thread deleted it meanwhile
            break;
          }
          case 4:
            if (random() % 4 == 0) manager->deleteSNPE(slot);
            break;
          default:
            manager->registerOwner(own, static_cast<unsigned long>(i));
            manager->unregisterOwner(own, static_cast<unsigned long>(i));
            (void)manager->getModelVersion(slot);
            (void)manager->getInputBufferName(slot, 0);
            break;
        }
      }
    });

    EXPECT_EQ(unexpected.load(), 0);
    EXPECT_GT(executed.load(), 0);
    EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 1);
    for (unsigned int slot = 0; slot < 40; ++slot) manager->deleteSNPE(slot);
    buffers.clear();
    EXPECT_EQ(snpe_stub::liveCount(), 0) << "every network, buffer and map was released";
  });
}

TEST_F(NetworkStressTest, ExecutionsOfDifferentSlotsOverlapAndOfOneSlotNever) {
  run([](SNPEMgr* manager, SNPEParam param) {
    std::vector<std::unique_ptr<SlotBuffers>> buffers;
    std::vector<std::string> layers;
    for (unsigned int slot = 0; slot < kThreads; ++slot) {
      ASSERT_EQ(manager->createSNPE(slot, param, layers), 0);
      buffers.push_back(std::make_unique<SlotBuffers>(manager, slot,
                                                      std::vector<tivora::test::Tensor>{{"image", {1, 4, 5, 3}}},
                                                      std::vector<tivora::test::Tensor>{{"mean", {1, 3}}}));
    }
    snpe_stub::setExecuteDelay(std::chrono::milliseconds(2));

    onThreads(kThreads, [&](int t) {
      for (int i = 0; i < 20; ++i) EXPECT_EQ(manager->execute(static_cast<unsigned int>(t)), 0);
    });
    EXPECT_GE(snpe_stub::maxConcurrentExecutions(), 2) << "different slots run in parallel";
    EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 1);

    snpe_stub::reset();
    snpe_stub::setJournaling(false);
    snpe_stub::setExecuteDelay(std::chrono::milliseconds(1));
    onThreads(kThreads, [&](int) {
      for (int i = 0; i < 10; ++i) EXPECT_EQ(manager->execute(3), 0);
    });
    EXPECT_EQ(snpe_stub::maxConcurrentExecutions(), 1) << "one slot's executions never overlap";

    for (unsigned int slot = 0; slot < kThreads; ++slot) manager->deleteSNPE(slot);
    buffers.clear();
    EXPECT_EQ(snpe_stub::liveCount(), 0);
  });
}

TEST_F(NetworkStressTest, ConcurrentFirstUsesOfARuntimeProbeItOnce) {
  run([](SNPEMgr* manager, SNPEParam param) {
    snpe_stub::setJournaling(true);
    snpe_stub::setRuntimeAvailable(SNPE_RUNTIME_GPU, true);
    param.runtime = TVR_RUNTIME_GPU;
    SNPEParam dsp = param;
    dsp.runtime = TVR_RUNTIME_DSP;  // not available: probed once, refused by every thread
    onThreads(kThreads, [&](int t) {
      std::vector<std::string> layers;
      SNPEParam own = t % 2 == 0 ? param : dsp;
      EXPECT_EQ(manager->createSNPE(static_cast<unsigned int>(20 + t), own, layers), t % 2 == 0 ? 0 : 2);
    });
    int probes = 0;
    for (const auto& call : snpe_stub::journal()) probes += call.name == "Snpe_Util_IsRuntimeAvailableCheckOption";
    EXPECT_EQ(probes, 2) << "one probe per runtime";
    for (unsigned int slot = 20; slot < 20 + kThreads; ++slot) manager->deleteSNPE(slot);
    EXPECT_EQ(snpe_stub::liveCount(), 0);
  });
}

}  // namespace
