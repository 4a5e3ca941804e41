// Cost of the per-frame paths: apply around an empty hook, executeSNPE of a network that does
// nothing, createSNPE when the slot's network is reused; each with tracing off and on. Reported as
// ratios to a plain virtual call and to an uncontended mutex lock/unlock measured in the same run,
// with the heap allocations each iteration makes.
//
//   build/release/bench/lifecycle_bench [--benchmark_min_time=0.5]
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "DevicePaths.h"
#include "DlContainer/DlContainer.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPE/SNPE.h"
#include "SNPE/SNPEBuilder.h"
#include "SNPE/SNPEUtil.h"
#include "MedianReporter.h"
#include "ScopedTrace.h"
#include "TivoraBase.h"
#include "snpe_stub/SnpeControl.h"

// Every heap allocation of the process, the library's and the stand-in's included.
static std::atomic<long> gAllocations{0};

void* operator new(std::size_t size) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using tivora::SNPEParam;

// A processing whose hooks do nothing, with its networks reachable from the benchmarks.
class BenchProcessing : public tivora::TivoraBase {
 public:
  BenchProcessing() : TivoraBase(1) {}
  tvr_err_t create(SNPEParam& param, std::vector<std::string>& layers) { return createSNPE(0, param, layers); }
  tvr_err_t execute() { return executeSNPE(0); }
  tivora::SNPEMgr* manager() { return mpSNPEMgr; }
  unsigned int slot() const { return mResourceType * 5; }

 protected:
  tvr_err_t setupImpl(const void*) override { return TVR_OK; }
  void teardownImpl() override {}
  tvr_err_t initializeImpl(const void*) override { return TVR_OK; }
  void finalizeImpl() override {}
  tvr_err_t applyImpl(const void*, void*) override { return TVR_OK; }
  tvr_err_t applyDebugImpl(const void*, void*, void*) override { return TVR_OK; }
  std::string getClassName() override { return "BenchProcessing"; }  // fits the short-string buffer
};

struct Baseline {
  virtual ~Baseline() = default;
  virtual int call(int x) = 0;
};
struct BaselineImpl : Baseline {
  int call(int x) override { return x + 1; }
};

// The state every benchmark shares: one processing with a built "none" network and its buffers.
struct Fixture {
  BenchProcessing processing;
  SNPEParam param;
  std::vector<std::string> layers;
  float input[4] = {1, 2, 3, 4};
  float output[4] = {};

  Fixture() {
    const std::string model = std::string(tivora::paths::kVendorCameraDir) + "/bench_none.dlc";
    std::filesystem::create_directories(tivora::paths::kVendorCameraDir);
    std::ofstream(model) << "TIVORA-HOST-DLC 1\nversion: bench-none-1\ninput: in 1x4\noutput: out 1x4\nop: none\n";
    std::snprintf(param.dlc_path, sizeof param.dlc_path, "%s", model.c_str());
    param.use_user_buffers = true;
    if (processing.create(param, layers) != TVR_OK) {
      std::fprintf(stderr, "cannot build the benchmark network\n");
      std::exit(1);
    }
    tivora::SNPEMgr* manager = processing.manager();
    const unsigned int slot = processing.slot();
    const size_t strideDims[] = {16, 4};
    Snpe_TensorShape_Handle_t strides = Snpe_TensorShape_CreateDimsSize(strideDims, 2);
    Snpe_UserBufferEncoding_Handle_t encoding = Snpe_UserBufferEncodingFloat_Create();
    Snpe_IUserBuffer_Handle_t in = Snpe_Util_CreateUserBuffer(input, sizeof input, strides, encoding);
    Snpe_IUserBuffer_Handle_t out = Snpe_Util_CreateUserBuffer(output, sizeof output, strides, encoding);
    manager->mInputMap[slot] = Snpe_UserBufferMap_Create();
    manager->mOutputMap[slot] = Snpe_UserBufferMap_Create();
    Snpe_UserBufferMap_Add(manager->mInputMap[slot], "in", in);
    Snpe_UserBufferMap_Add(manager->mOutputMap[slot], "out", out);
    manager->mInputBuffers[slot].push_back(in);
    manager->mOutputBuffers[slot].push_back(out);
    // The fixture lives for the process, like a processing in the camera process.
  }

  // A second network of the same model, built directly with the runtime's calls.
  Snpe_SNPE_Handle_t directNetwork() {
    Snpe_DlContainer_Handle_t container = Snpe_DlContainer_Open(param.dlc_path);
    Snpe_SNPEBuilder_Handle_t builder = Snpe_SNPEBuilder_Create(container);
    Snpe_SNPE_Handle_t network = Snpe_SNPEBuilder_Build(builder);
    Snpe_SNPEBuilder_Delete(builder);
    Snpe_DlContainer_Delete(container);
    return network;
  }
};

Fixture& fixture() {
  static Fixture* f = new Fixture;
  return *f;
}

void countAllocations(benchmark::State& state, long before) {
  state.counters["allocs/iter"] =
      benchmark::Counter(static_cast<double>(gAllocations.load() - before), benchmark::Counter::kAvgIterations);
}

void BM_PlainVirtualCall(benchmark::State& state) {
  BaselineImpl impl;
  Baseline* base = &impl;
  int x = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(base);  // the compiler may not see through the call
    x = base->call(x);
    benchmark::DoNotOptimize(x);
  }
}
BENCHMARK(BM_PlainVirtualCall);

void BM_UncontendedMutex(benchmark::State& state) {
  std::mutex lock;
  for (auto _ : state) {
    lock.lock();
    benchmark::ClobberMemory();
    lock.unlock();
  }
}
BENCHMARK(BM_UncontendedMutex);

void BM_ApplyEmptyHook(benchmark::State& state) {
  Fixture& f = fixture();
  tivora::gTracingOn = state.range(0) != 0;
  tvr_input_param_t input{};
  int output = 0;
  hvx::IProcessing* host = &f.processing;
  const long before = gAllocations.load();
  for (auto _ : state) benchmark::DoNotOptimize(host->apply(&input, &output, nullptr));
  countAllocations(state, before);
  tivora::gTracingOn = false;
}
BENCHMARK(BM_ApplyEmptyHook)->ArgName("tracing")->Arg(0)->Arg(1);

void BM_ExecuteSNPE(benchmark::State& state) {
  Fixture& f = fixture();
  tivora::gTracingOn = state.range(0) != 0;
  const long before = gAllocations.load();
  for (auto _ : state) benchmark::DoNotOptimize(f.processing.execute());
  countAllocations(state, before);
  tivora::gTracingOn = false;
}
BENCHMARK(BM_ExecuteSNPE)->ArgName("tracing")->Arg(0)->Arg(1);

// The runtime's own call on the same network and maps: what executeSNPE adds is the difference.
void BM_RuntimeExecuteDirect(benchmark::State& state) {
  Fixture& f = fixture();
  tivora::SNPEMgr* manager = f.processing.manager();
  const unsigned int slot = f.processing.slot();
  static Snpe_SNPE_Handle_t network = f.directNetwork();
  const long before = gAllocations.load();
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        Snpe_SNPE_ExecuteUserBuffers(network, manager->mInputMap[slot], manager->mOutputMap[slot]));
  }
  countAllocations(state, before);
}
BENCHMARK(BM_RuntimeExecuteDirect);

// Reuse logs "SNPE instance has been created" at INFO, the default threshold: measured both with the
// line written to the log and with the threshold at WARN.
void BM_CreateSNPEReused(benchmark::State& state) {
  Fixture& f = fixture();
  tivora::gTracingOn = state.range(0) != 0;
  tivora::TivoraLogger* logger = tivora::TivoraLogger::getInstance();
  logger->setLogLevel(state.range(1) != 0 ? tivora::TivoraLogger::TVR_LOG_INFO : tivora::TivoraLogger::TVR_LOG_WARN);
  const long before = gAllocations.load();
  for (auto _ : state) benchmark::DoNotOptimize(f.processing.create(f.param, f.layers));
  countAllocations(state, before);
  logger->setLogLevel(tivora::TivoraLogger::TVR_LOG_WARN);
  tivora::gTracingOn = false;
}
BENCHMARK(BM_CreateSNPEReused)->ArgNames({"tracing", "infolog"})->ArgsProduct({{0, 1}, {0, 1}});

// Prints the usual table, then every result as a ratio to the two baselines of the same run.
class RatioReporter : public tivora::bench::MedianReporter {
 public:
  RatioReporter() : MedianReporter(Clock::kCpu) {}
  void Finalize() override {
    ConsoleReporter::Finalize();
    const auto figure = [this](const char* name) {
      const auto found = nanos().find(name);
      return found == nanos().end() ? 0.0 : found->second;
    };
    const double call = figure("BM_PlainVirtualCall");
    const double mutex = figure("BM_UncontendedMutex");
    std::printf("\n%-44s %10s %14s %10s\n", "per-frame path", "ns", "x virtual call", "x mutex");
    for (const auto& [name, ns] : nanos()) {
      std::printf("%-44s %10.1f %14.1f %10.1f\n", name.c_str(), ns, ns / call, ns / mutex);
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  // Trace markers go to the build's device tree, where trace_marker is /dev/null: the cost of the
  // write system call stays, the file does not grow.
  namespace fs = std::filesystem;
  fs::create_directories(fs::path(tivora::paths::kTraceMarker).parent_path());
  std::error_code ignored;
  fs::remove(tivora::paths::kTraceMarker, ignored);
  fs::create_symlink("/dev/null", tivora::paths::kTraceMarker);
  snpe_stub::setJournaling(false);
  fixture();
  // The benchmarks that log at WARN say so.
  return tivora::bench::runBenchmarks<RatioReporter>(argc, argv);
}
