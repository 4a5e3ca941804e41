// The sample processing's whole per-frame path on a 1080p NV12 frame with a MobileNet-shaped
// network, through the library, against the same work written with OpenCV, same run:
//   BM_PipelineLibrary  MeanColourProcessing's apply: crop, NV12 to RGB scaled to 224x224, RGB to
//                       float, execute (the NN runtime's stand-in, on OpenCV DNN); its counters
//                       give each stage's mean time and the share execution takes
//   BM_PipelineOpenCV   cv::cvtColorTwoPlane, cv::resize (INTER_AREA), normalisation
//                       (cv::dnn::blobFromImage), cv::dnn::Net::forward
//   BM_ExecuteOnly      cv::dnn::Net::forward alone, on the same input
// The network is scripts/make-models' MobileNet-shaped one with three classes (the sample's answer
// holds three values) and seeded random weights: no trained weights can be had here. It costs
// what MobileNet costs and answers nothing meaningful. Times are wall-clock: OpenCV runs the
// network on its thread pool in both pipelines.
//
// The machine may be busy: interleave the repetitions, and read the medians.
//   build/release/bench/pipeline_bench --benchmark_repetitions=10
//     --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <opencv2/dnn.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Images.h"
#include "MeanColourProcessing.h"
#include "MedianReporter.h"
#include "fastcv_stub/FastcvControl.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::examples::MeanColourConfig;
using tivora::examples::MeanColourOutput;
using tivora::examples::MeanColourProcessing;
using tivora::test::Nv12Frame;

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;
constexpr int kSide = 224;  // the network's input
constexpr const char* kModel = TIVORA_BENCH_MODEL;

// A 1080p NV12 frame with camera-like content: smooth ramps and some texture.
struct TexturedFrame : Nv12Frame {
  TexturedFrame() : Nv12Frame(kWidth, kHeight, kWidth, 0, 0, 0) {
    for (size_t i = 0; i < memory.size(); ++i) {
      memory[i] = static_cast<uint8_t>((i % kWidth) / 8 + (i / kWidth) / 5 + (i * 2654435761u >> 29));
    }
  }
};

const Nv12Frame& frame() {
  static const TexturedFrame f;
  return f;
}

// The sample set up once for the process (opening the model takes a second).
class LibraryPipeline {
 public:
  LibraryPipeline() : mProcessing(0, config()) {
    tvr_create_param_t create{};
    std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s", kModel);
    create.dlc_num = 1;
    create.runtime = TVR_RUNTIME_CPU;
    create.use_user_buffers = true;
    tvr_static_param_t stream{};
    stream.src_info = {TVR_FORMAT_NV12, {kWidth, kHeight}, kWidth, kHeight};
    mReady = host().setup(&create) == TVR_OK && host().initialize(&stream) == TVR_OK;
  }

  bool ready() const { return mReady; }
  bool apply() {
    const tvr_input_param_t input{TVR_ROTATION_0, &frame().record};
    return host().apply(&input, &mOutput, nullptr) == TVR_OK;
  }
  const tivora::examples::StageTimes& times() const { return mProcessing.lastStageTimes(); }

 private:
  static MeanColourConfig config() {
    MeanColourConfig c;
    c.outputTensor = "scores";
    return c;
  }
  hvx::IProcessing& host() { return mProcessing; }

  MeanColourProcessing mProcessing;
  MeanColourOutput mOutput{};
  bool mReady = false;
};

// The same work with OpenCV: colour at full size, then area scaling, normalisation and the network.
class OpenCvPipeline {
 public:
  OpenCvPipeline() : mNet(cv::dnn::readNetFromONNX(kModel)), mNames(mNet.getUnconnectedOutLayersNames()) {
    prepare();
    execute();  // the first forward allocates the network's memory
  }

  void prepare() {
    uint8_t* pixels = const_cast<uint8_t*>(frame().memory.data());
    const cv::Mat y(kHeight, kWidth, CV_8UC1, pixels, kWidth);
    const cv::Mat cbcr(kHeight / 2, kWidth / 2, CV_8UC2, pixels + frame().record.offset[1], kWidth);
    cv::cvtColorTwoPlane(y, cbcr, mRgb, cv::COLOR_YUV2RGB_NV12);
    cv::resize(mRgb, mSmall, cv::Size(kSide, kSide), 0, 0, cv::INTER_AREA);
    // (in - 128) / 128, as the sample normalises.
    cv::dnn::blobFromImage(mSmall, mBlob, 1.0 / 128, cv::Size(), cv::Scalar::all(128), false, false, CV_32F);
  }
  void execute() {
    mNet.setInput(mBlob);
    mNet.forward(mOutputs, mNames);
  }

 private:
  cv::dnn::Net mNet;
  std::vector<std::string> mNames;
  cv::Mat mRgb, mSmall, mBlob;
  std::vector<cv::Mat> mOutputs;
};

bool haveModel(benchmark::State& state) {
  if (access(kModel, R_OK) == 0) return true;
  state.SkipWithError(
      "no model: the build makes it where the NN runtime runs ONNX and python3-onnx is installed");
  return false;
}

void BM_PipelineLibrary(benchmark::State& state) {
  if (!haveModel(state)) return;
  static LibraryPipeline pipeline;
  if (!pipeline.ready()) {
    state.SkipWithError("the sample's setup or initialize failed on the model");
    return;
  }
  double stages[4] = {};
  for (auto _ : state) {
    if (!pipeline.apply()) {
      state.SkipWithError("apply failed");
      return;
    }
    const tivora::examples::StageTimes& t = pipeline.times();
    stages[0] += static_cast<double>(t.split);
    stages[1] += static_cast<double>(t.nv12ToRgb);
    stages[2] += static_cast<double>(t.rgbToFloat);
    stages[3] += static_cast<double>(t.execute);
  }
  const char* names[4] = {"split ms", "NV12 to RGB ms", "RGB to float ms", "execute ms"};
  for (int i = 0; i < 4; ++i) {
    state.counters[names[i]] = benchmark::Counter(stages[i] / 1e6, benchmark::Counter::kAvgIterations);
  }
  state.counters["execute share"] = stages[3] / (stages[0] + stages[1] + stages[2] + stages[3]);
}
BENCHMARK(BM_PipelineLibrary)->Unit(benchmark::kMillisecond)->UseRealTime();

OpenCvPipeline* openCv(benchmark::State& state) {
  if (!haveModel(state)) return nullptr;
  static OpenCvPipeline pipeline;
  return &pipeline;
}

void BM_PipelineOpenCV(benchmark::State& state) {
  OpenCvPipeline* pipeline = openCv(state);
  if (pipeline == nullptr) return;
  for (auto _ : state) {
    pipeline->prepare();
    pipeline->execute();
  }
}
BENCHMARK(BM_PipelineOpenCV)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ExecuteOnly(benchmark::State& state) {
  OpenCvPipeline* pipeline = openCv(state);
  if (pipeline == nullptr) return;
  for (auto _ : state) pipeline->execute();
}
BENCHMARK(BM_ExecuteOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

// Prints the usual table, then the library's pipeline and OpenCV's network alone as ratios to
// OpenCV's pipeline of the same run.
class RatioReporter : public tivora::bench::MedianReporter {
 public:
  RatioReporter() : MedianReporter(Clock::kReal) {}
  void Finalize() override {
    ConsoleReporter::Finalize();
    const auto library = nanos().find("BM_PipelineLibrary/real_time"),
               openCv = nanos().find("BM_PipelineOpenCV/real_time"), execute = nanos().find("BM_ExecuteOnly/real_time");
    if (openCv == nanos().end()) return;
    std::printf("\n%-20s %-20s %8s  %s\n", "pipeline", "baseline", "ratio", "goal");
    if (library != nanos().end())
      std::printf("%-20s %-20s %8.3f  %s\n", "BM_PipelineLibrary", "BM_PipelineOpenCV", library->second / openCv->second,
                  "<= 1.10");
    if (execute != nanos().end())
      std::printf("%-20s %-20s %8.3f  %s\n", "BM_ExecuteOnly", "BM_PipelineOpenCV", execute->second / openCv->second,
                  "the network's share");
  }
};

}  // namespace

int main(int argc, char** argv) {
  // A device keeps no journal of its calls; the stand-ins' would be work no device does.
  fastcv_stub::setJournaling(false);
  snpe_stub::setJournaling(false);
  return tivora::bench::runBenchmarks<RatioReporter>(argc, argv);
}
