/* Runtime lists of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h).
 * A list orders the processors a network may run on: the first one added comes first. */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_RUNTIMELIST_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_RUNTIMELIST_H

#include <stddef.h>

#include "DlSystem/DlEnums.h"
#include "DlSystem/DlError.h"

typedef void* Snpe_RuntimeList_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* An empty list; null on failure. */
Snpe_RuntimeList_Handle_t Snpe_RuntimeList_Create(void);

Snpe_ErrorCode_t Snpe_RuntimeList_Delete(Snpe_RuntimeList_Handle_t list);

/* Appends `runtime`: the order of adding is the order of precedence. */
Snpe_ErrorCode_t Snpe_RuntimeList_Add(Snpe_RuntimeList_Handle_t list, Snpe_Runtime_t runtime);

size_t Snpe_RuntimeList_Size(Snpe_RuntimeList_Handle_t list);

/* Entry `index`. */
Snpe_Runtime_t Snpe_RuntimeList_GetRuntime(Snpe_RuntimeList_Handle_t list, int index);

#ifdef __cplusplus
}
#endif

#endif
