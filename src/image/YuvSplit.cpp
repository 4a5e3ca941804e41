// Cutting the crop region of a host frame into separate planes, row by row.
#include "TivoraBase.h"
#include "image/RowCopy.h"
#include "log/Log.h"

namespace tivora {

namespace {

// Copies `rows` rows of `bytes` bytes; row r of the source starts at `plane` + `start` + r x `stride`.
// The sum is 32-bit, as the frame's offsets are, and signed: a crop above the plane's first row
// (a negative crop y) reads the rows before it instead of wrapping 4 GiB ahead.
void copyRows(const uint8_t* plane, uint32_t start, uint32_t stride, uint32_t bytes, uint32_t rows,
              const tvr_image_buf_t* destination) {
  for (uint32_t r = 0; r < rows; ++r) {
    image::copyRow(destination->buf.p_base + static_cast<uint32_t>(destination->stride * r),
                   plane + static_cast<int32_t>(start + r * stride), bytes);
  }
}

}  // namespace

tvr_err_t TivoraBase::splitYUV420SP(const tvr_image_buf_t* source, tvr_image_buf_t* destinationY,
                                    tvr_image_buf_t* destinationCC) {
  static constexpr char kFunction[] = "splitYUV420SP";
  if (source == nullptr || destinationY == nullptr || destinationCC == nullptr) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Source image(%p) or destination Y(%p) / CC(%p) is null",
            static_cast<const void*>(source), static_cast<void*>(destinationY), static_cast<void*>(destinationCC));
    return TVR_ERR_INVALID_ARG;
  }
  const int32_t x = source->crop.pos.x;
  const int32_t y = source->crop.pos.y;
  const uint32_t w = source->crop.size.w;
  const uint32_t h = source->crop.size.h;
  if (w != destinationY->size.w || h != destinationY->size.h) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
            "Source image size(%d x %d) and destination Y size(%d x %d) are not equal", w, h, destinationY->size.w,
            destinationY->size.h);
    return TVR_ERR_INVALID_ARG;
  }
  if (w != destinationCC->size.w || h != destinationCC->size.h * 2u) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Invarid CC size,source(%d x %d) dstination(%d x %d)", w, h,
            destinationCC->size.w, destinationCC->size.h * 2u);
    return TVR_ERR_INVALID_ARG;
  }
  if (source->format != TVR_FORMAT_NV12 && source->format != TVR_FORMAT_NV21) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Invalid source format %d", source->format);
    return TVR_ERR_INVALID_ARG;
  }
  if (h == 0) return TVR_OK;

  const uint32_t stride = source->stride;
  const auto column = static_cast<uint32_t>(x);
  // Luma ignores offset[0]; chroma starts at offset[1], half the crop's rows down (signed halving).
  copyRows(source->buf.p_base, static_cast<uint32_t>(y) * stride + column, stride, w, h, destinationY);
  copyRows(source->buf.p_base + source->offset[1], static_cast<uint32_t>(y / 2) * stride + column, stride, w, h >> 1,
           destinationCC);
  return TVR_OK;
}

tvr_err_t TivoraBase::splitYUV420P(const tvr_image_buf_t* source, tvr_image_buf_t* destinationY,
                                   tvr_image_buf_t* destinationU, tvr_image_buf_t* destinationV) {
  static constexpr char kFunction[] = "splitYUV420P";
  if (source == nullptr || destinationY == nullptr || destinationU == nullptr || destinationV == nullptr) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Source image(%p) or destination Y(%p) / U(%p)/ V(%p) is null",
            static_cast<const void*>(source), static_cast<void*>(destinationY), static_cast<void*>(destinationU),
            static_cast<void*>(destinationV));
    return TVR_ERR_INVALID_ARG;
  }
  const int32_t x = source->crop.pos.x;
  const int32_t y = source->crop.pos.y;
  const uint32_t w = source->crop.size.w;
  const uint32_t h = source->crop.size.h;
  if (w != destinationY->size.w || h != destinationY->size.h) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
            "Source image size(%d x %d) and destination Y size(%d x %d) not equal", w, h, destinationY->size.w,
            destinationY->size.h);
    return TVR_ERR_INVALID_ARG;
  }
  if (w != destinationU->size.w * 2u || h != destinationU->size.h * 2u) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
            "Source image size (%d x %d) and twice destination U size(%d x %d) not equal", w, h,
            destinationU->size.w * 2u, destinationU->size.h * 2u);
    return TVR_ERR_INVALID_ARG;
  }
  if (w != destinationV->size.w * 2u || h != destinationV->size.h * 2u) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
            "Source image size(%d x %d) and twice destination V size(%d x %d) not equal", w, h,
            destinationV->size.w * 2u, destinationV->size.h * 2u);
    return TVR_ERR_INVALID_ARG;
  }
  if (static_cast<uint32_t>(source->format) >= 2u) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Source format(%d) is not supported", source->format);
    return TVR_ERR_INVALID_ARG;
  }
  if (h == 0) return TVR_OK;

  const uint32_t stride = source->stride;
  const auto lumaStart = static_cast<uint32_t>(y) * stride + static_cast<uint32_t>(x);
  const auto chromaStart = static_cast<uint32_t>(y / 2) * stride + static_cast<uint32_t>(x / 2);
  copyRows(source->buf.p_base + source->offset[0], lumaStart, stride, w, h, destinationY);
  copyRows(source->buf.p_base + source->offset[1], chromaStart, stride, w >> 1, h >> 1, destinationU);
  copyRows(source->buf.p_base + source->offset[2], chromaStart, stride, w >> 1, h >> 1, destinationV);
  return TVR_OK;
}

}  // namespace tivora
