// Cost of the per-frame image operations on 1080p frames, as ratios to baselines measured in the
// same run:
//   convertRGB888ToFloat (both channel orders)  vs  memcpy of the float output's bytes
//   convertRGB888ToNormalisedFloat (both layouts) vs  the same memcpy
//   splitYUV420SP / splitYUV420P of a crop       vs  memcpy of the same bytes
//   convertNv12ToRgb888 with every stage         vs  libyuv's NV12ToRAW of the full frame
// with the heap allocations each iteration makes (every malloc of the process is counted).
//
//   build/release/bench/image_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>
#include <libyuv/convert_argb.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "ChannelNormalisation.h"
#include "MedianReporter.h"
#include "TivoraBase.h"
#include "fastcv_stub/FastcvControl.h"

// Every malloc of the process (operator new included), the library's and the stand-in's.
static std::atomic<long> gMallocs{0};
extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) {
  gMallocs.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(size);
}

namespace {

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;

// A processing that only lends its image operations to the benchmarks.
class BenchProcessing : public tivora::TivoraBase {
 public:
  BenchProcessing() : TivoraBase(0) {}
  using TivoraBase::convertNv12ToRgb888;
  using TivoraBase::convertRGB888ToFloat;
  using TivoraBase::createImageBuf;
  using TivoraBase::deleteImageBuf;
  using TivoraBase::splitYUV420P;
  using TivoraBase::splitYUV420SP;

 protected:
  tvr_err_t setupImpl(const void*) override { return TVR_OK; }
  void teardownImpl() override {}
  tvr_err_t initializeImpl(const void*) override { return TVR_OK; }
  void finalizeImpl() override {}
  tvr_err_t applyImpl(const void*, void*) override { return TVR_OK; }
  tvr_err_t applyDebugImpl(const void*, void*, void*) override { return TVR_OK; }
};

BenchProcessing& processing() {
  static auto* p = new BenchProcessing;
  return *p;
}

// A buffer from createImageBuf filled with camera-like content (smooth ramps and some texture).
tvr_image_buf_t* filled(uint32_t w, uint32_t h, uint32_t stride, tvr_image_format_t format, uint64_t pixelSize) {
  tvr_image_buf_t* image = processing().createImageBuf(w, h, stride, format, pixelSize);
  for (uint32_t i = 0; i < image->buf.buf_size; ++i) {
    image->buf.p_base[i] = static_cast<uint8_t>((i % stride) / 8 + (i / stride) / 5 + (i * 2654435761u >> 29));
  }
  return image;
}

void countMallocs(benchmark::State& state, long before) {
  state.counters["allocs/iter"] =
      benchmark::Counter(static_cast<double>(gMallocs.load() - before), benchmark::Counter::kAvgIterations);
}

void setBytes(benchmark::State& state, uint64_t bytes) {
  state.SetBytesProcessed(static_cast<int64_t>(bytes) * static_cast<int64_t>(state.iterations()));
}

// --- RGB888 to float ---------------------------------------------------------------------------

constexpr uint64_t kFloatBytes = uint64_t{kWidth} * 3 * kHeight * sizeof(float);

void BM_MemcpyFloatOutput(benchmark::State& state) {
  std::vector<uint8_t> from(kFloatBytes, 1), to(kFloatBytes);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), kFloatBytes);
    benchmark::ClobberMemory();
  }
  setBytes(state, kFloatBytes);
}
BENCHMARK(BM_MemcpyFloatOutput);

void BM_RgbToFloat(benchmark::State& state) {
  static tvr_image_buf_t* rgb = filled(kWidth * 3, kHeight, kWidth * 3, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  static tvr_image_buf_t* tensor =
      processing().createImageBuf(kWidth * 3, kHeight, kWidth * 3, TVR_FORMAT_YUV420SP_UV_UBWC, sizeof(float));
  const auto order = static_cast<tivora::TivoraBase::RgbOrder>(state.range(0));
  const long before = gMallocs.load();
  for (auto _ : state) {
    benchmark::DoNotOptimize(processing().convertRGB888ToFloat(rgb, tensor, 128, 255, order));
    benchmark::ClobberMemory();
  }
  countMallocs(state, before);
  setBytes(state, kFloatBytes);
}
BENCHMARK(BM_RgbToFloat)->ArgName("reverse")->Arg(0)->Arg(1);

// ImageNet's normalisation into BGR floats, as an ONNX model (planar) or the device runtime
// (interleaved) takes them.
void BM_NormaliseToFloat(benchmark::State& state) {
  static tvr_image_buf_t* rgb = filled(kWidth * 3, kHeight, kWidth * 3, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  static std::vector<float> memory(kFloatBytes / sizeof(float));
  const auto layout = static_cast<tivora::TensorLayout>(state.range(0));
  const tivora::FloatTensor tensor{memory.data(), kFloatBytes, kWidth, kHeight, layout, tivora::ChannelOrder::kBgr};
  const tivora::ChannelNormalisation imageNet{{123.675f, 116.28f, 103.53f}, {1 / 58.395f, 1 / 57.12f, 1 / 57.375f}};
  const long before = gMallocs.load();
  for (auto _ : state) {
    benchmark::DoNotOptimize(tivora::convertRGB888ToNormalisedFloat(rgb, tensor, imageNet));
    benchmark::ClobberMemory();
  }
  countMallocs(state, before);
  setBytes(state, kFloatBytes);
}
BENCHMARK(BM_NormaliseToFloat)->ArgName("planar")->Arg(0)->Arg(1);

// --- Plane splitting -----------------------------------------------------------------------------

// A 1080p frame in a padded allocation, cropped as a camera's digital zoom would.
constexpr uint32_t kStride = 2048;
constexpr uint32_t kCropW = 1600, kCropH = 900, kCropX = 160, kCropY = 90;
constexpr uint64_t kSplitBytes = uint64_t{kCropW} * kCropH * 3 / 2;

tvr_image_buf_t* croppedNv12Frame() {
  tvr_image_buf_t* frame = filled(kWidth, kHeight, kStride, TVR_FORMAT_NV12, 1);
  frame->crop = {{kCropX, kCropY}, {kCropW, kCropH}};
  return frame;
}

// A planar frame as the planar split reads it: each chroma plane holds its rows one full stride apart.
tvr_image_buf_t* croppedPlanarFrame() {
  tvr_image_buf_t* frame = filled(kWidth, kHeight * 2, kStride, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  frame->format = TVR_FORMAT_YUV420P_UV;
  frame->offset[1] = kStride * kHeight;
  frame->offset[2] = kStride * (kHeight + kHeight / 2);
  frame->crop = {{kCropX, kCropY}, {kCropW, kCropH}};
  return frame;
}

void BM_MemcpySplitBytes(benchmark::State& state) {
  std::vector<uint8_t> from(kSplitBytes, 1), to(kSplitBytes);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), kSplitBytes);
    benchmark::ClobberMemory();
  }
  setBytes(state, kSplitBytes);
}
BENCHMARK(BM_MemcpySplitBytes);

void BM_SplitYUV420SP(benchmark::State& state) {
  static tvr_image_buf_t* frame = croppedNv12Frame();
  static tvr_image_buf_t* y = processing().createImageBuf(kCropW, kCropH, kCropW, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  static tvr_image_buf_t* cc =
      processing().createImageBuf(kCropW, kCropH / 2, kCropW, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  const long before = gMallocs.load();
  for (auto _ : state) {
    benchmark::DoNotOptimize(processing().splitYUV420SP(frame, y, cc));
    benchmark::ClobberMemory();
  }
  countMallocs(state, before);
  setBytes(state, kSplitBytes);
}
BENCHMARK(BM_SplitYUV420SP);

void BM_SplitYUV420P(benchmark::State& state) {
  static tvr_image_buf_t* frame = croppedPlanarFrame();
  static tvr_image_buf_t* y = processing().createImageBuf(kCropW, kCropH, kCropW, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  static tvr_image_buf_t* u =
      processing().createImageBuf(kCropW / 2, kCropH / 2, kCropW / 2, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  static tvr_image_buf_t* v =
      processing().createImageBuf(kCropW / 2, kCropH / 2, kCropW / 2, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
  const long before = gMallocs.load();
  for (auto _ : state) {
    benchmark::DoNotOptimize(processing().splitYUV420P(frame, y, u, v));
    benchmark::ClobberMemory();
  }
  countMallocs(state, before);
  setBytes(state, kSplitBytes);
}
BENCHMARK(BM_SplitYUV420P);

// --- NV12 to RGB ------------------------------------------------------------------------------

constexpr uint64_t kRgbBytes = uint64_t{kWidth} * 3 * kHeight;

tvr_image_buf_t* plane(uint32_t w, uint32_t h, uint32_t stride) {
  return filled(w, h, stride, TVR_FORMAT_YUV420SP_UV_UBWC, 1);
}

// A rotate record: memory laid out for the turned plane, the size of the plane before the turn.
tvr_image_buf_t* turned(tvr_image_buf_t* image, uint32_t unrotatedW, uint32_t unrotatedH) {
  image->size = {unrotatedW, unrotatedH};
  return image;
}

void BM_LibyuvNV12ToRAW(benchmark::State& state) {
  static tvr_image_buf_t* y = plane(kWidth, kHeight, kWidth);
  static tvr_image_buf_t* cc = plane(kWidth, kHeight / 2, kWidth);
  static std::vector<uint8_t> rgb(kRgbBytes);
  for (auto _ : state) {
    libyuv::NV12ToRAW(y->buf.p_base, static_cast<int>(kWidth), cc->buf.p_base, static_cast<int>(kWidth), rgb.data(),
                      static_cast<int>(kWidth * 3), static_cast<int>(kWidth), static_cast<int>(kHeight));
    benchmark::ClobberMemory();
  }
  setBytes(state, kRgbBytes);
}
BENCHMARK(BM_LibyuvNV12ToRAW);

// Colour conversion alone, and every stage: 1080p down to 640x360, up to 896x504 (a network's
// input), a quarter turn (rotate records carry the unrotated size), then colour.
void BM_Nv12ToRgb(benchmark::State& state) {
  static tvr_image_buf_t* y = plane(kWidth, kHeight, kWidth);
  static tvr_image_buf_t* cc = plane(kWidth, kHeight / 2, kWidth);
  static tvr_image_buf_t* rgb = plane(kWidth * 3, kHeight, kWidth * 3);
  static tvr_image_buf_t* downY = plane(640, 360, 640);
  static tvr_image_buf_t* downCC = plane(640, 180, 640);
  static tvr_image_buf_t* upY = plane(896, 504, 896);
  static tvr_image_buf_t* upCC = plane(896, 252, 896);
  static tvr_image_buf_t* rotY = turned(plane(504, 896, 504), 896, 504);
  static tvr_image_buf_t* rotCC = turned(plane(504, 448, 504), 896, 252);
  static tvr_image_buf_t* smallRgb = plane(896 * 3, 504, 896 * 3);
  const bool allStages = state.range(0) != 0;
  const long before = gMallocs.load();
  for (auto _ : state) {
    if (allStages) {
      benchmark::DoNotOptimize(processing().convertNv12ToRgb888(y, cc, smallRgb, TVR_ROTATION_90, downY, downCC, upY,
                                                                upCC, rotY, rotCC));
    } else {
      benchmark::DoNotOptimize(processing().convertNv12ToRgb888(y, cc, rgb, TVR_ROTATION_0, nullptr, nullptr, nullptr,
                                                                nullptr, nullptr, nullptr));
    }
    benchmark::ClobberMemory();
  }
  countMallocs(state, before);
  setBytes(state, kRgbBytes);
}
BENCHMARK(BM_Nv12ToRgb)->ArgName("allstages")->Arg(0)->Arg(1);

// Prints the usual table, then each operation as a ratio to its baseline of the same run.
class RatioReporter : public tivora::bench::MedianReporter {
 public:
  RatioReporter() : MedianReporter(Clock::kReal) {}
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-32s %-24s %8s  %s\n", "operation", "baseline", "ratio", "goal");
    row("BM_RgbToFloat/reverse:0", "BM_MemcpyFloatOutput", "<= 1.0");
    row("BM_RgbToFloat/reverse:1", "BM_MemcpyFloatOutput", "<= 1.0");
    row("BM_NormaliseToFloat/planar:0", "BM_MemcpyFloatOutput", "<= 1.0");
    row("BM_NormaliseToFloat/planar:1", "BM_MemcpyFloatOutput", "<= 1.0");
    row("BM_SplitYUV420SP", "BM_MemcpySplitBytes", "<= 1.1");
    row("BM_SplitYUV420P", "BM_MemcpySplitBytes", "<= 1.1");
    row("BM_Nv12ToRgb/allstages:0", "BM_LibyuvNV12ToRAW", "reported");
    row("BM_Nv12ToRgb/allstages:1", "BM_LibyuvNV12ToRAW", "reported");
  }

 private:
  void row(const std::string& name, const std::string& baseline, const char* goal) {
    const auto subject = nanos().find(name), base = nanos().find(baseline);
    if (subject == nanos().end() || base == nanos().end()) return;  // filtered out
    std::printf("%-32s %-24s %8.2f  %s\n", name.c_str(), baseline.c_str(), subject->second / base->second, goal);
  }
};

}  // namespace

int main(int argc, char** argv) {
  fastcv_stub::setJournaling(false);
  return tivora::bench::runBenchmarks<RatioReporter>(argc, argv);
}
