/* User buffers and their encodings, of the NN runtime's C interface (our declaration; see
 * DlSystem/DlEnums.h). A user buffer describes caller memory that holds one tensor; it is created by
 * Snpe_Util_CreateUserBuffer (SNPE/SNPEUtil.h). */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_IUSERBUFFER_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_IUSERBUFFER_H

#include <stddef.h>

#include "DlSystem/DlError.h"

typedef void* Snpe_IUserBuffer_Handle_t;
typedef void* Snpe_UserBufferEncoding_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* The 32-bit float encoding: 4 bytes an element. Null on failure. */
Snpe_UserBufferEncoding_Handle_t Snpe_UserBufferEncodingFloat_Create(void);

Snpe_ErrorCode_t Snpe_UserBufferEncodingFloat_Delete(Snpe_UserBufferEncoding_Handle_t encoding);

/* Deletes the user buffer, not the caller memory it describes. */
Snpe_ErrorCode_t Snpe_IUserBuffer_Delete(Snpe_IUserBuffer_Handle_t buffer);

/* Size in bytes of the caller memory. */
size_t Snpe_IUserBuffer_GetSize(Snpe_IUserBuffer_Handle_t buffer);

#ifdef __cplusplus
}
#endif

#endif
