/* Utility functions of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h). */
#ifndef TIVORA_PLATFORM_SNPE_SNPE_SNPEUTIL_H
#define TIVORA_PLATFORM_SNPE_SNPE_SNPEUTIL_H

#include "DlSystem/DlEnums.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Sets the runtime's own log level. Non-zero on success; only the first call takes effect. */
int Snpe_Util_InitializeLogging(Snpe_LogLevel_t level);

#ifdef __cplusplus
}
#endif

#endif
