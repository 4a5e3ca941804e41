/* The vendor image library's C interface, as far as tivorabase uses it. Our own declaration,
 * written from the library's documented names and values; the vendor SDK's fastcv.h replaces it
 * when the build is given FASTCV_ROOT.
 *
 * Images are 8-bit planes addressed by a base pointer, a width and height in samples and a stride
 * in bytes between the starts of two rows. For the interleaved variants a sample is a CbCr pair
 * (two bytes, Cb first): a row of UVUVUVUV has width 4. The library recommends 16-byte aligned
 * buffers and widths and strides that are multiples of 8; it does not check them. */
#ifndef TIVORA_PLATFORM_FASTCV_FASTCV_H
#define TIVORA_PLATFORM_FASTCV_FASTCV_H

#include <stdint.h>

typedef enum {
  FASTCV_OP_LOW_POWER = 0,
  FASTCV_OP_PERFORMANCE = 1,
  FASTCV_OP_CPU_OFFLOAD = 2,
  FASTCV_OP_CPU_PERFORMANCE = 3 /* the CPU's fastest implementation */
} fcvOperationMode;

/* Clockwise quarter turns. */
typedef enum {
  FASTCV_ROTATE_90 = 1,
  FASTCV_ROTATE_180 = 2,
  FASTCV_ROTATE_270 = 3
} fcvRotateDegree;

typedef enum {
  FASTCV_SUCCESS = 0,
  FASTCV_EFAIL = 1,
  FASTCV_EUNALIGNPARAM = 2,
  FASTCV_EBADPARAM = 3,
  FASTCV_EINVALSTATE = 4,
  FASTCV_ENORES = 5,
  FASTCV_EUNSUPPORTED = 6,
  FASTCV_EHWQDSP = 7,
  FASTCV_EHWGPU = 8
} fcvStatus;

#ifdef __cplusplus
extern "C" {
#endif

/* 0 on success; 999 when the hardware does not meet the library's minimum. */
int fcvSetOperationMode(fcvOperationMode mode);

/* nBytes of memory aligned to byteAlignment (a power of two below 255); null on failure.
 * Release it with fcvMemFree, and only memory from fcvMemAlloc goes there. */
void* fcvMemAlloc(unsigned int nBytes, unsigned int byteAlignment);
void fcvMemFree(void* ptr);

/* Down-scaling by area averaging: each of the dstWidth (M) output samples of a row is the mean of
 * the srcWidth (N) input samples it covers (M <= N), first along rows, then along columns. */
void fcvScaleDownMNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                      uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);
void fcvScaleDownMNInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t srcStride, uint8_t* dst, uint32_t dstWidth,
                                uint32_t dstHeight, uint32_t dstStride);

/* Up-scaling with a polyphase (cubic) filter. */
void fcvScaleUpPolyu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                      uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);
void fcvScaleUpPolyInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t srcStride, uint8_t* dst, uint32_t dstWidth,
                                uint32_t dstHeight, uint32_t dstStride);

/* Clockwise rotation; for 90 and 270 degrees the result is srcHeight wide and srcWidth tall. */
fcvStatus fcvRotateImageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                           uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                           fcvRotateDegree degree);
fcvStatus fcvRotateImageInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                      fcvRotateDegree degree);

/* NV12 (a Y plane and an interleaved CbCr plane, Cb first, sub-sampled 2x2) to packed RGB888,
 * R first; srcWidth and srcHeight are the luma plane's. */
void fcvColorYCbCr420PseudoPlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcC,
                                            uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst,
                                            uint32_t dstStride);

#ifdef __cplusplus
}
#endif

#endif
