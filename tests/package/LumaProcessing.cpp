// A processing built outside the tivorabase tree, against the installed package only, as a camera
// engineer's own plugin is. It needs no network: it reports the mean luma of the host's crop.
#include <TivoraPlugin.h>
#include <tivorabase.h>

#include <cstdio>

namespace {

struct LumaOutput {
  float mean;       // of the crop's luma, 0..255
  uint32_t frames;  // applied so far
};

constexpr tvr_image_format_t kPlane = TVR_FORMAT_YUV420SP_UV_UBWC;  // one packed 8-bit plane

class LumaProcessing : public tivora::TivoraBase {
 public:
  explicit LumaProcessing(tivora::SNPEMgr::TVRResourceType resourceType) : TivoraBase(resourceType) {}
  ~LumaProcessing() override { releaseImages(); }
  const char* getProcessingName() override { return "LumaProcessing"; }

 protected:
  std::string getClassName() override { return "LumaProcessing"; }
  tvr_err_t setupImpl(const void* /*createParam*/) override { return TVR_OK; }
  void teardownImpl() override {}

  tvr_err_t initializeImpl(const void* staticParam) override {
    const tvr_size_t size = static_cast<const tvr_static_param_t*>(staticParam)->src_info.size;
    releaseImages();
    mY = createImageBuf(size.w, size.h, size.w, kPlane, 1);
    mCC = createImageBuf(size.w, size.h / 2, size.w, kPlane, 1);
    return mY != nullptr && mCC != nullptr ? TVR_OK : TVR_ERR_INVALID_ARG;
  }
  void finalizeImpl() override { releaseImages(); }

  tvr_err_t applyImpl(const void* input, void* output) override {
    const tvr_image_buf_t* frame = static_cast<const tvr_input_param_t*>(input)->p_src;
    if (frame == nullptr || mY == nullptr) return TVR_ERR_INVALID_ARG;
    mY->size = frame->crop.size;
    mCC->size = {frame->crop.size.w, frame->crop.size.h / 2};
    const tvr_err_t status = splitYUV420SP(frame, mY, mCC);
    if (status != TVR_OK) return status;
    uint64_t sum = 0;
    for (uint32_t y = 0; y < mY->size.h; ++y) {
      for (uint32_t x = 0; x < mY->size.w; ++x) sum += mY->buf.p_base[y * mY->stride + x];
    }
    auto* result = static_cast<LumaOutput*>(output);
    const uint64_t pixels = uint64_t{mY->size.w} * mY->size.h;
    result->mean = pixels == 0 ? 0.0f : static_cast<float>(sum) / static_cast<float>(pixels);
    ++result->frames;
    return TVR_OK;
  }
  tvr_err_t applyDebugImpl(const void* input, void* output, void* /*debug*/) override {
    return applyImpl(input, output);
  }

 private:
  void releaseImages() {
    deleteImageBuf(mY);
    deleteImageBuf(mCC);
    mY = mCC = nullptr;
  }

  tvr_image_buf_t* mY = nullptr;
  tvr_image_buf_t* mCC = nullptr;
};

}  // namespace

TIVORA_PLUGIN(LumaProcessing, LumaOutput)

extern "C" TIVORA_PLUGIN_EXPORT int tivora_describe_output(const void* output, char* text, size_t size) {
  const auto* result = static_cast<const LumaOutput*>(output);
  return std::snprintf(text, size, "mean luma %.1f after %u frames", static_cast<double>(result->mean),
                       result->frames) > 0 ? 0 : 1;
}
