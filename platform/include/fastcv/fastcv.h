/* The vendor image library's C interface, as far as tivorabase uses it. Our own declaration,
 * written from the library's documented names and values; the vendor SDK's fastcv.h replaces it
 * when the build is given FASTCV_ROOT. */
#ifndef TIVORA_PLATFORM_FASTCV_FASTCV_H
#define TIVORA_PLATFORM_FASTCV_FASTCV_H

typedef enum {
  FASTCV_OP_LOW_POWER = 0,
  FASTCV_OP_PERFORMANCE = 1,
  FASTCV_OP_CPU_OFFLOAD = 2,
  FASTCV_OP_CPU_PERFORMANCE = 3
} fcvOperationMode;

#ifdef __cplusplus
extern "C" {
#endif

/* 0 on success; 999 when the hardware does not meet the library's minimum. */
int fcvSetOperationMode(fcvOperationMode mode);

#ifdef __cplusplus
}
#endif

#endif
