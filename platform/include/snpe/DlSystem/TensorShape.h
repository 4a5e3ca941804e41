/* Tensor shapes of the NN runtime's C interface (our declaration; see DlSystem/DlEnums.h).
 * A shape is a list of dimensions; the last dimension varies fastest. */
#ifndef TIVORA_PLATFORM_SNPE_DLSYSTEM_TENSORSHAPE_H
#define TIVORA_PLATFORM_SNPE_DLSYSTEM_TENSORSHAPE_H

#include <stddef.h>

#include "DlSystem/DlError.h"

typedef void* Snpe_TensorShape_Handle_t;

#ifdef __cplusplus
extern "C" {
#endif

/* A shape of `rank` dimensions copied from `dims`; null on failure. */
Snpe_TensorShape_Handle_t Snpe_TensorShape_CreateDimsSize(const size_t* dims, size_t rank);

Snpe_ErrorCode_t Snpe_TensorShape_Delete(Snpe_TensorShape_Handle_t shape);

/* The dimensions, valid while the shape lives; null when the shape has none. */
const size_t* Snpe_TensorShape_GetDimensions(Snpe_TensorShape_Handle_t shape);

size_t Snpe_TensorShape_Rank(Snpe_TensorShape_Handle_t shape);

/* Dimension `index`. */
size_t Snpe_TensorShape_At(Snpe_TensorShape_Handle_t shape, size_t index);

#ifdef __cplusplus
}
#endif

#endif
