// NV12 planes to RGB888 through the image library: scale down, scale up, rotate, colour.
#include "TivoraBase.h"
#include "TivoraUtil.h"
#include "fastcv.h"
#include "log/Log.h"

namespace tivora {

namespace {

bool sameSize(const tvr_image_buf_t* a, const tvr_image_buf_t* b) {
  return a->size.w == b->size.w && a->size.h == b->size.h;
}

bool fitsIn(const tvr_image_buf_t* inner, const tvr_image_buf_t* outer) {
  return inner->size.w <= outer->size.w && inner->size.h <= outer->size.h;
}

// The image library counts an interleaved chroma row in CbCr pairs; the records count bytes.
uint32_t pairs(const tvr_image_buf_t* chroma) { return chroma->size.w >> 1; }

}  // namespace

tvr_err_t TivoraBase::convertNv12ToRgb888(const tvr_image_buf_t* sourceY, const tvr_image_buf_t* sourceCC,
                                          tvr_image_buf_t* rgb, tvr_rotation_t rotation,
                                          const tvr_image_buf_t* scaleDownY, const tvr_image_buf_t* scaleDownCC,
                                          const tvr_image_buf_t* scaleUpY, const tvr_image_buf_t* scaleUpCC,
                                          const tvr_image_buf_t* rotateY, const tvr_image_buf_t* rotateCC) {
  static constexpr char kFunction[] = "convertNv12ToRgb888";
  if (sourceY == nullptr || sourceCC == nullptr || rgb == nullptr) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction, "Source image Y(%p) / CC(%p) or destination rgb(%p) is null",
            static_cast<const void*>(sourceY), static_cast<const void*>(sourceCC), static_cast<void*>(rgb));
    return TVR_ERR_INVALID_ARG;
  }
  const tvr_image_buf_t* y = sourceY;
  const tvr_image_buf_t* cc = sourceCC;

  if (scaleDownY != nullptr && scaleDownCC != nullptr && !(sameSize(scaleDownY, y) && sameSize(scaleDownCC, cc))) {
    TVR_LOG(mpLogger, DEBUG, getClassName(), kFunction, "Scale down: %d(%d)x%d -> %d(%d)x%d", y->size.w, y->stride,
            y->size.h, scaleDownY->size.w, scaleDownY->stride, scaleDownY->size.h);
    if (!fitsIn(scaleDownY, y) || !fitsIn(scaleDownCC, cc)) {
      TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
              "Scale down size(Y(%d x %d), CC(%d x %d)) bigger than source image size(Y(%d x %d), CC(%d x %d))",
              scaleDownY->size.w, scaleDownY->size.h, scaleDownCC->size.w, scaleDownCC->size.h, y->size.w, y->size.h,
              cc->size.w, cc->size.h);
      return TVR_ERR_INVALID_ARG;
    }
    fcvScaleDownMNu8(y->buf.p_base, y->size.w, y->size.h, y->stride, scaleDownY->buf.p_base, scaleDownY->size.w,
                     scaleDownY->size.h, scaleDownY->stride);
    fcvScaleDownMNInterleaveu8(cc->buf.p_base, pairs(cc), cc->size.h, cc->stride, scaleDownCC->buf.p_base,
                               pairs(scaleDownCC), scaleDownCC->size.h, scaleDownCC->stride);
    y = scaleDownY;
    cc = scaleDownCC;
  }

  if (scaleUpY != nullptr && scaleUpCC != nullptr && !(sameSize(scaleUpY, y) && sameSize(scaleUpCC, cc))) {
    TVR_LOG(mpLogger, DEBUG, getClassName(), kFunction, "Scale up: %d(%d)x%d -> %d(%d)x%d", y->size.w, y->stride,
            y->size.h, scaleUpY->size.w, scaleUpY->stride, scaleUpY->size.h);
    if (!fitsIn(y, scaleUpY) || !fitsIn(cc, scaleUpCC)) {
      TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
              "Scale up size(Y(%d x %d), CC(%d x %d)) smaller than scale down size(Y(%d x %d), CC(%d x %d))",
              scaleUpY->size.w, scaleUpY->size.h, scaleUpCC->size.w, scaleUpCC->size.h, y->size.w, y->size.h,
              cc->size.w, cc->size.h);
      return TVR_ERR_INVALID_ARG;
    }
    fcvScaleUpPolyu8(y->buf.p_base, y->size.w, y->size.h, y->stride, scaleUpY->buf.p_base, scaleUpY->size.w,
                     scaleUpY->size.h, scaleUpY->stride);
    fcvScaleUpPolyInterleaveu8(cc->buf.p_base, pairs(cc), cc->size.h, cc->stride, scaleUpCC->buf.p_base,
                               pairs(scaleUpCC), scaleUpCC->size.h, scaleUpCC->stride);
    y = scaleUpY;
    cc = scaleUpCC;
  }

  if (rotation != TVR_ROTATION_0 && rotateY != nullptr && rotateCC != nullptr) {
    TVR_LOG(mpLogger, DEBUG, getClassName(), kFunction, "Rotate(%d): %d(%d)x%d -> %d(%d)x%d", rotation, y->size.w,
            y->stride, y->size.h, rotateY->size.w, rotateY->stride, rotateY->size.h);
    // The rotate records carry the unrotated sizes: equality, not swapped dimensions.
    if (!sameSize(rotateY, y) || !sameSize(rotateCC, cc)) {
      TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
              "Rotate size(Y(%d x %d), CC(%d x %d)) and scale up size(Y(%d x %d), CC(%d x %d)) not equal",
              rotateY->size.w, rotateY->size.h, rotateCC->size.w, rotateCC->size.h, y->size.w, y->size.h, cc->size.w,
              cc->size.h);
      return TVR_ERR_INVALID_ARG;
    }
    const fcvRotateDegree degree = convert(rotation);
    fcvRotateImageu8(y->buf.p_base, y->size.w, y->size.h, y->stride, rotateY->buf.p_base, rotateY->stride, degree);
    fcvRotateImageInterleavedu8(cc->buf.p_base, pairs(cc), cc->size.h, cc->stride, rotateCC->buf.p_base,
                                rotateCC->stride, degree);
    y = rotateY;
    cc = rotateCC;
  }

  TVR_LOG(mpLogger, DEBUG, getClassName(), kFunction, "NV12->RGB: %d(%d)x%d -> %d(%d)x%d", y->size.w, y->stride,
          y->size.h, rgb->size.w, rgb->stride, rgb->size.h);
  if (y->size.w * 3u != rgb->size.w || y->size.h != rgb->size.h || cc->size.w * 3u != y->size.w * 3u ||
      cc->size.h * 2u != y->size.h) {
    TVR_LOG(mpLogger, ERROR, getClassName(), kFunction,
            "Destination rgb size(%d x %d) and 3 times size of rotate(Y(%d x %d), CC(%d x %d)) not equal", rgb->size.w,
            rgb->size.h, y->size.w, y->size.h, cc->size.w, cc->size.h);
    return TVR_ERR_INVALID_ARG;
  }
  fcvColorYCbCr420PseudoPlanarToRGB888u8(y->buf.p_base, cc->buf.p_base, y->size.w, y->size.h, y->stride, cc->stride,
                                         rgb->buf.p_base, rgb->stride);
  return TVR_OK;
}

}  // namespace tivora
