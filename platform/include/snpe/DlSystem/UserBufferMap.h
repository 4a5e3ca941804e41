/* Maps from tensor names to user buffers, of the NN runtime's C interface (our declaration; see
 * DlSystem/DlEnums.h). A map refers to its user buffers; it does not own them. */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_USERBUFFERMAP_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_USERBUFFERMAP_H

#include <stddef.h>

#include "DlSystem/DlError.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/StringList.h"

typedef void* Snpe_UserBufferMap_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* An empty map; null on failure. */
Snpe_UserBufferMap_Handle_t Snpe_UserBufferMap_Create(void);

Snpe_ErrorCode_t Snpe_UserBufferMap_Delete(Snpe_UserBufferMap_Handle_t map);

/* Maps `name` to `buffer`; a name already in the map is mapped anew. */
Snpe_ErrorCode_t Snpe_UserBufferMap_Add(Snpe_UserBufferMap_Handle_t map, const char* name,
                                        Snpe_IUserBuffer_Handle_t buffer);

size_t Snpe_UserBufferMap_Size(Snpe_UserBufferMap_Handle_t map);

/* A new list of the names in the map; the caller deletes it. Null on failure. */
Snpe_StringList_Handle_t Snpe_UserBufferMap_GetUserBufferNames(Snpe_UserBufferMap_Handle_t map);

/* The buffer mapped to `name` (still owned by its creator); null when absent. */
Snpe_IUserBuffer_Handle_t Snpe_UserBufferMap_GetUserBuffer_Ref(Snpe_UserBufferMap_Handle_t map, const char* name);

#ifdef __cplusplus
}
#endif

#endif
