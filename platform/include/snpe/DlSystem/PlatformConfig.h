/* Platform configuration of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h). */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_PLATFORMCONFIG_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_PLATFORMCONFIG_H

#include "DlSystem/DlError.h"

typedef void* Snpe_PlatformConfig_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* An empty configuration; null on failure. */
Snpe_PlatformConfig_Handle_t Snpe_PlatformConfig_Create(void);

Snpe_ErrorCode_t Snpe_PlatformConfig_Delete(Snpe_PlatformConfig_Handle_t config);

/* Options of the form "keyword:value". 1 when valid (and taken), 0 when rejected. */
int Snpe_PlatformConfig_SetPlatformOptions(Snpe_PlatformConfig_Handle_t config, const char* options);

#ifdef __cplusplus
}
#endif

#endif
