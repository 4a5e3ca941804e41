/* The network builder of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h).
 * A builder collects the settings of one network, then builds it from a container. */
#ifndef TIVORA_PLATFORM_SNPE_SNPE_SNPEBUILDER_H
#define TIVORA_PLATFORM_SNPE_SNPE_SNPEBUILDER_H

#include "DlContainer/DlContainer.h"
#include "DlSystem/DlEnums.h"
#include "DlSystem/DlError.h"
#include "DlSystem/PlatformConfig.h"
#include "DlSystem/RuntimeList.h"
#include "DlSystem/StringList.h"
#include "SNPE/SNPE.h"

typedef void* Snpe_SNPEBuilder_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* A builder for networks of `container`; null on failure. */
Snpe_SNPEBuilder_Handle_t Snpe_SNPEBuilder_Create(Snpe_DlContainer_Handle_t container);

Snpe_ErrorCode_t Snpe_SNPEBuilder_Delete(Snpe_SNPEBuilder_Handle_t builder);

/* Processors to try, first one first (the list is copied). */
Snpe_ErrorCode_t Snpe_SNPEBuilder_SetRuntimeProcessorOrder(Snpe_SNPEBuilder_Handle_t builder,
                                                           Snpe_RuntimeList_Handle_t runtimes);

Snpe_ErrorCode_t Snpe_SNPEBuilder_SetPerformanceProfile(Snpe_SNPEBuilder_Handle_t builder,
                                                        Snpe_PerformanceProfile_t profile);

Snpe_ErrorCode_t Snpe_SNPEBuilder_SetProfilingLevel(Snpe_SNPEBuilder_Handle_t builder, Snpe_ProfilingLevel_t level);

Snpe_ErrorCode_t Snpe_SNPEBuilder_SetExecutionPriorityHint(Snpe_SNPEBuilder_Handle_t builder,
                                                           Snpe_ExecutionPriorityHint_t priority);

Snpe_ErrorCode_t Snpe_SNPEBuilder_SetDebugMode(Snpe_SNPEBuilder_Handle_t builder, int debug);

/* Output layers to produce (the list is copied); an empty list means the model's own outputs. */
Snpe_ErrorCode_t Snpe_SNPEBuilder_SetOutputLayers(Snpe_SNPEBuilder_Handle_t builder, Snpe_StringList_Handle_t layers);

Snpe_ErrorCode_t Snpe_SNPEBuilder_SetUseUserSuppliedBuffers(Snpe_SNPEBuilder_Handle_t builder, int use);

Snpe_ErrorCode_t Snpe_SNPEBuilder_SetPlatformConfig(Snpe_SNPEBuilder_Handle_t builder,
                                                    Snpe_PlatformConfig_Handle_t config);

/* A network with the settings given so far; null on any error. */
Snpe_SNPE_Handle_t Snpe_SNPEBuilder_Build(Snpe_SNPEBuilder_Handle_t builder);

#ifdef __cplusplus
}
#endif

#endif
