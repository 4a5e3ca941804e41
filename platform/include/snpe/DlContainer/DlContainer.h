/* Model containers of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h). */
#ifndef TIVORA_PLATFORM_SNPE_DLCONTAINER_DLCONTAINER_H
#define TIVORA_PLATFORM_SNPE_DLCONTAINER_DLCONTAINER_H

#include <stddef.h>
#include <stdint.h>

#include "DlSystem/DlError.h"

typedef void* Snpe_DlContainer_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the container file `filename`; null (and a last-error text) when it cannot be read or is
 * not a valid container. */
Snpe_DlContainer_Handle_t Snpe_DlContainer_Open(const char* filename);

/* Opens a container from `size` bytes at `buffer` (the bytes of a container file); the bytes are
 * not needed after the call. Null on failure. */
Snpe_DlContainer_Handle_t Snpe_DlContainer_OpenBuffer(const uint8_t* buffer, const size_t size);

Snpe_ErrorCode_t Snpe_DlContainer_Delete(Snpe_DlContainer_Handle_t container);

#ifdef __cplusplus
}
#endif

#endif
