/* Utility functions of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h). */
#ifndef TIVORA_PLATFORM_SNPE_SNPE_SNPEUTIL_H
#define TIVORA_PLATFORM_SNPE_SNPE_SNPEUTIL_H

#include <stddef.h>

#include "DlSystem/DlEnums.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/TensorShape.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Sets the runtime's own log level. Non-zero on success; only the first call takes effect. */
int Snpe_Util_InitializeLogging(Snpe_LogLevel_t level);

/* Non-zero when `runtime` can run networks on this device, checked as `option` says. */
int Snpe_Util_IsRuntimeAvailableCheckOption(Snpe_Runtime_t runtime, Snpe_RuntimeCheckOption_t option);

/* A user buffer over `bufSize` bytes of caller memory at `buffer`, which must outlive it.
 * `strides` gives, per dimension of the tensor, the distance in bytes between neighbouring elements
 * (a packed float tensor [4,3,2] has strides [24,8,4]); it is copied. `encoding` is an encoding
 * handle (e.g. from Snpe_UserBufferEncodingFloat_Create) although its declared type is the
 * user-buffer handle. Null on failure. */
Snpe_IUserBuffer_Handle_t Snpe_Util_CreateUserBuffer(void* buffer, size_t bufSize, Snpe_TensorShape_Handle_t strides,
                                                     Snpe_IUserBuffer_Handle_t encoding);

#ifdef __cplusplus
}
#endif

#endif
