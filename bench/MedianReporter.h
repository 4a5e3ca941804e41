// A console reporter that also keeps one figure per benchmark, for the ratio tables the benchmark
// programs print after the usual output: the median when repetitions are asked for, else the
// single run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "TivoraLogger.h"

namespace tivora::bench {

class MedianReporter : public benchmark::ConsoleReporter {
 public:
  enum class Clock { kCpu, kReal };
  explicit MedianReporter(Clock clock) : mClock(clock) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      const double ns = mClock == Clock::kCpu ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        mNanos[run.run_name.str()] = ns;
      } else if (run.run_type == Run::RT_Iteration && run.repetitions <= 1) {
        mNanos[run.benchmark_name()] = ns;
      }
    }
  }

 protected:
  // Nanoseconds per iteration by benchmark name; a benchmark filtered out is absent.
  const std::map<std::string, double>& nanos() const { return mNanos; }

 private:
  Clock mClock;
  std::map<std::string, double> mNanos;
};

// The rest of a benchmark program's main: the library logs at WARN (the per-frame paths log nothing
// there), and the benchmarks the command line selects run, reported by a `Reporter`.
template <typename Reporter>
int runBenchmarks(int argc, char** argv) {
  TivoraLogger::getInstance()->setLogLevel(TivoraLogger::TVR_LOG_WARN);
  benchmark::Initialize(&argc, argv);
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}

}  // namespace tivora::bench
