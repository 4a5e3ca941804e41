/* Error codes of the NN runtime's C interface (our declaration; see DlEnums.h). */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_DLERROR_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_DLERROR_H

typedef enum {
  SNPE_SUCCESS = 0,
  SNPE_ERRORCODE_CAPI_CREATE_FAILURE = 10,
  SNPE_ERRORCODE_CAPI_HANDLEGEN_FAILURE = 11,
  SNPE_ERRORCODE_CAPI_DELETE_FAILURE = 12,
  SNPE_ERRORCODE_CAPI_BAD_HANDLE = 13,
  SNPE_ERRORCODE_CAPI_BAD_ARGUMENT = 14,
  SNPE_ERRORCODE_CAPI_BAD_ALLOC = 15
} Snpe_ErrorCode_t;

#ifdef __cplusplus
extern "C" {
#endif

/* Text of the last error of the calling thread's most recent failed call. */
const char* Snpe_ErrorCode_GetLastErrorString(void);

#ifdef __cplusplus
}
#endif

#endif
