// RGB888 to normalised floats for a network's input.
#include "TivoraBase.h"
#include "image/RgbToFloatKernel.h"
#include "log/Log.h"

namespace tivora {

tvr_err_t TivoraBase::convertRGB888ToFloat(const tvr_image_buf_t* source, tvr_image_buf_t* destination, int mean,
                                           int divisor, RgbOrder order) {
  static constexpr char kFunction[] = "convertRGB888ToFloat";
  if (source == nullptr || destination == nullptr) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Source image(%p) or destination(%p) is null",
            static_cast<const void*>(source), static_cast<void*>(destination));
    return TVR_ERR_INVALID_ARG;
  }
  if (source->size.w != destination->size.w || source->size.h != destination->size.h) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
            "Source image size(%d x %d) and destination size(%d x %d) not equal", source->size.w, source->size.h,
            destination->size.w, destination->size.h);
    return TVR_ERR_INVALID_ARG;
  }
  if (divisor == 0) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Divisor(%d) is zero", divisor);
    return TVR_ERR_INVALID_ARG;
  }
  const uint32_t width = source->size.w;
  const uint32_t height = source->size.h;
  if (width == 0 || height == 0) return TVR_OK;

  // One reciprocal per call, rounded once to float: outputs are (in - mean) x scale, never a division.
  const float scale = static_cast<float>(1.0 / divisor);
  const bool reverse = order == RGB_ORDER_REVERSE;
  // Columns step by 3 and the test follows each step: every row converts at least one pixel, and
  // a width that is no multiple of 3 converts its last pixel whole.
  const uint32_t pixels = width / 3u + (width % 3u != 0 ? 1u : 0u);
  const image::RgbRowToFloatFn rowToFloat = image::rgbRowToFloatKernel();
  const uint8_t* src = source->buf.p_base;
  float* dst = reinterpret_cast<float*>(destination->buf.p_base);
  for (uint32_t r = 0; r < height; ++r) {
    rowToFloat(src + static_cast<uint32_t>(source->stride * r),
                         dst + static_cast<uint32_t>(destination->stride * r), pixels, mean, scale, reverse);
  }
  return TVR_OK;
}

}  // namespace tivora
