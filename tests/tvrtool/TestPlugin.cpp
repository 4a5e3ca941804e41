// A tiny processing as a plugin, for tvrtool run's end-to-end tests: each frame's output is the
// mean luma of its crop (plus the option offset=N), so a test sees which frame it was given and
// where, and how many applies had a debug record (it takes the option debug-dir and dumps nothing).
// With sleep-ms=N each apply sleeps N ms, reported as its stage "sleep", for the trace's timing.
// Built once as it should be (TEST_PLUGIN_GOOD) and as three broken plugins: another ABI
// version (TEST_PLUGIN_ABI=2), a factory that returns null, no factory (TEST_PLUGIN_NO_FACTORY).
#include <time.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#include "RecordingProcessing.h"
#include "TivoraPlugin.h"

namespace {

struct LumaOutput {
  uint32_t frames, meanLuma, debugApplies;
};

class LumaProcessing : public tivora::test::RecordingProcessing {
 public:
  using RecordingProcessing::RecordingProcessing;
  const char* getProcessingName() override { return "LumaProcessing"; }
  uint32_t offset = 0, sleepMs = 0;
  tivora_stage_time_t sleepStage{"sleep", 0, 0};

 protected:
  tvr_err_t applyImpl(const void* in, void* out) override {
    if (sleepMs != 0) {
      sleepStage.start_ns = monotonicNs();
      std::this_thread::sleep_for(std::chrono::milliseconds(sleepMs));
      sleepStage.duration_ns = monotonicNs() - sleepStage.start_ns;
    }
    const tvr_image_buf_t& frame = *static_cast<const tvr_input_param_t*>(in)->p_src;
    uint64_t total = 0;
    for (uint32_t y = 0; y < frame.crop.size.h; ++y) {
      for (uint32_t x = 0; x < frame.crop.size.w; ++x) {
        total += frame.buf.p_base[size_t{frame.stride} * (y + uint32_t(frame.crop.pos.y)) + x + uint32_t(frame.crop.pos.x)];
      }
    }
    auto& output = *static_cast<LumaOutput*>(out);
    output = {output.frames + 1, static_cast<uint32_t>(total / (uint64_t{frame.crop.size.w} * frame.crop.size.h)) + offset,
              output.debugApplies};
    return TVR_OK;
  }
  static int64_t monotonicNs() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return int64_t{t.tv_sec} * 1000000000 + t.tv_nsec;
  }
  tvr_err_t applyDebugImpl(const void* in, void* out, void*) override {
    ++static_cast<LumaOutput*>(out)->debugApplies;
    return applyImpl(in, out);
  }
};

}  // namespace

#ifdef TEST_PLUGIN_GOOD
TIVORA_PLUGIN(LumaProcessing, LumaOutput)

extern "C" TIVORA_PLUGIN_EXPORT int tivora_set_option(hvx::IProcessing* processing, const char* key, const char* value) {
  auto& luma = *static_cast<LumaProcessing*>(processing);
  if (std::strcmp(key, "debug-dir") == 0) return 0;
  uint32_t* number = std::strcmp(key, "offset") == 0 ? &luma.offset : std::strcmp(key, "sleep-ms") == 0 ? &luma.sleepMs : nullptr;
  return number != nullptr && std::sscanf(value, "%u", number) == 1 ? 0 : 1;
}

extern "C" TIVORA_PLUGIN_EXPORT size_t tivora_stage_times(hvx::IProcessing* processing, tivora_stage_time_t* stages, size_t capacity) {
  const auto& luma = *static_cast<LumaProcessing*>(processing);
  if (luma.sleepMs == 0 || capacity == 0) return 0;
  stages[0] = luma.sleepStage;
  return 1;
}

extern "C" TIVORA_PLUGIN_EXPORT int tivora_describe_output(const void* output, char* text, size_t size) {
  const auto& luma = *static_cast<const LumaOutput*>(output);
  return std::snprintf(text, size, "frame %u, luma %u, %u debug", luma.frames, luma.meanLuma, luma.debugApplies) > 0 ? 0 : 1;
}

#else
extern "C" TIVORA_PLUGIN_EXPORT int tivora_plugin_abi(void) { return TEST_PLUGIN_ABI; }
#ifndef TEST_PLUGIN_NO_FACTORY
extern "C" TIVORA_PLUGIN_EXPORT hvx::IProcessing* tivora_create_processing(uint32_t) { return nullptr; }
#endif
extern "C" TIVORA_PLUGIN_EXPORT void tivora_destroy_processing(hvx::IProcessing* processing) { delete processing; }
extern "C" TIVORA_PLUGIN_EXPORT size_t tivora_output_size(void) { return sizeof(LumaOutput); }
#endif
