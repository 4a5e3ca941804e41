/* Built networks of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h).
 * A network is built by Snpe_SNPEBuilder_Build (SNPE/SNPEBuilder.h). */
#ifndef TIVORA_PLATFORM_SNPE_SNPE_SNPE_H
#define TIVORA_PLATFORM_SNPE_SNPE_SNPE_H

#include "DlSystem/DlError.h"
#include "DlSystem/StringList.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"

typedef void* Snpe_SNPE_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

Snpe_ErrorCode_t Snpe_SNPE_Delete(Snpe_SNPE_Handle_t snpe);

/* Runs the network once: reads the input tensors from the user buffers of `inputs` and writes the
 * output tensors to those of `outputs`, each found by tensor name. */
Snpe_ErrorCode_t Snpe_SNPE_ExecuteUserBuffers(Snpe_SNPE_Handle_t snpe, Snpe_UserBufferMap_Handle_t inputs,
                                              Snpe_UserBufferMap_Handle_t outputs);

/* The model's version text, valid while the network lives; null on failure. */
const char* Snpe_SNPE_GetModelVersion(Snpe_SNPE_Handle_t snpe);

/* New lists of the input and of the output tensor names; the caller deletes them. */
Snpe_StringList_Handle_t Snpe_SNPE_GetInputTensorNames(Snpe_SNPE_Handle_t snpe);
Snpe_StringList_Handle_t Snpe_SNPE_GetOutputTensorNames(Snpe_SNPE_Handle_t snpe);

/* A new shape of the input tensor `name`; the caller deletes it. Null when there is no such input. */
Snpe_TensorShape_Handle_t Snpe_SNPE_GetInputDimensions(Snpe_SNPE_Handle_t snpe, const char* name);

#ifdef __cplusplus
}
#endif

#endif
