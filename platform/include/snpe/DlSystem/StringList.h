/* String lists of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h). */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_STRINGLIST_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_STRINGLIST_H

#include <stddef.h>

#include "DlSystem/DlError.h"

typedef void* Snpe_StringList_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* An empty list; null on failure. */
Snpe_StringList_Handle_t Snpe_StringList_Create(void);

Snpe_ErrorCode_t Snpe_StringList_Delete(Snpe_StringList_Handle_t list);

/* Appends a copy of `text`. */
Snpe_ErrorCode_t Snpe_StringList_Append(Snpe_StringList_Handle_t list, const char* text);

/* Entry `index`, valid while the list lives and is not changed; "" when out of range. */
const char* Snpe_StringList_At(Snpe_StringList_Handle_t list, size_t index);

size_t Snpe_StringList_Size(Snpe_StringList_Handle_t list);

#ifdef __cplusplus
}
#endif

#endif
