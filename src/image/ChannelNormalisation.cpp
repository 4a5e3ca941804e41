// RGB888 to per-channel normalised floats for a network's input tensor.
#include "ChannelNormalisation.h"

#include <cmath>

#include "image/NormaliseKernel.h"
#include "log/Log.h"

namespace tivora {

namespace {

constexpr char kClassName[] = "TivoraUtil";
constexpr char kFunction[] = "convertRGB888ToNormalisedFloat";

// Whether the arguments hold a fault; it is logged.
bool refused(const tvr_image_buf_t* source, const FloatTensor& tensor, const ChannelNormalisation& n) {
  TivoraLogger* const logger = processLogger();
  if (source == nullptr || source->buf.p_base == nullptr || tensor.data == nullptr) {
    TVR_LOG(logger, ERROR, kClassName, kFunction, "Source image(%p), its memory or tensor data(%p) is null",
            static_cast<const void*>(source), static_cast<void*>(tensor.data));
    return true;
  }
  if (source->size.w % 3 != 0) {
    TVR_LOG(logger, ERROR, kClassName, kFunction, "Source width(%u) is no whole number of RGB888 pixels",
            source->size.w);
    return true;
  }
  if (source->size.w / 3 != tensor.width || source->size.h != tensor.height) {
    TVR_LOG(logger, ERROR, kClassName, kFunction,
            "Source image size(%u x %u pixels) and tensor size(%u x %u) not equal", source->size.w / 3, source->size.h,
            tensor.width, tensor.height);
    return true;
  }
  if ((tensor.layout != TensorLayout::kInterleaved && tensor.layout != TensorLayout::kPlanar) ||
      (tensor.order != ChannelOrder::kRgb && tensor.order != ChannelOrder::kBgr)) {
    TVR_LOG(logger, ERROR, kClassName, kFunction, "Tensor layout(%d) or channel order(%d) unknown",
            static_cast<int>(tensor.layout), static_cast<int>(tensor.order));
    return true;
  }
  const uint64_t needed = uint64_t{tensor.width} * tensor.height * 3 * sizeof(float);
  if (tensor.bytes < needed) {
    TVR_LOG(logger, ERROR, kClassName, kFunction, "Tensor memory(%zu bytes) smaller than the image(%llu bytes)",
            tensor.bytes, static_cast<unsigned long long>(needed));
    return true;
  }
  for (int c = 0; c < 3; ++c) {
    if (!std::isfinite(n.mean[c]) || !std::isfinite(n.scale[c])) {
      TVR_LOG(logger, ERROR, kClassName, kFunction, "Mean(%f) or scale(%f) of channel %d is not finite",
              static_cast<double>(n.mean[c]), static_cast<double>(n.scale[c]), c);
      return true;
    }
  }
  return false;
}

}  // namespace

tvr_err_t convertRGB888ToNormalisedFloat(const tvr_image_buf_t* source, const FloatTensor& tensor,
                                         const ChannelNormalisation& normalisation) {
  if (refused(source, tensor, normalisation)) return TVR_ERR_INVALID_ARG;
  // Per tensor channel: BGR takes blue's mean and scale first.
  image::RowNormalisation row{};
  row.reverse = tensor.order == ChannelOrder::kBgr;
  for (int k = 0; k < 3; ++k) {
    row.mean[k] = normalisation.mean[image::sampleOf(k, row.reverse)];
    row.scale[k] = normalisation.scale[image::sampleOf(k, row.reverse)];
  }
  const image::NormaliseKernels& kernels = image::normaliseKernels();
  const std::size_t width = tensor.width;
  const std::size_t plane = width * tensor.height;
  for (uint32_t r = 0; r < tensor.height; ++r) {
    const uint8_t* src = source->buf.p_base + std::size_t{source->stride} * r;
    if (tensor.layout == TensorLayout::kInterleaved) {
      kernels.interleaved(src, tensor.data + 3 * width * r, tensor.width, row);
    } else {
      float* const planes[3] = {tensor.data + width * r, tensor.data + plane + width * r,
                                tensor.data + 2 * plane + width * r};
      kernels.planar(src, planes, tensor.width, row);
    }
  }
  return TVR_OK;
}

}  // namespace tivora
