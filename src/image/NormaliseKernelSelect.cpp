// Picks the normalising row kernels for the processor the library runs on.
#include "image/NormaliseKernel.h"

namespace tivora::image {

const NormaliseKernels& normaliseKernels() {
#if defined(__aarch64__)
  static const NormaliseKernels best{normaliseInterleavedNeon, normalisePlanarNeon};  // NEON: every arm64
#elif defined(__x86_64__)
  static const NormaliseKernels best = __builtin_cpu_supports("ssse3")
                                           ? NormaliseKernels{normaliseInterleavedSsse3, normalisePlanarSsse3}
                                           : NormaliseKernels{normaliseInterleavedC, normalisePlanarC};
#else
  static const NormaliseKernels best{normaliseInterleavedC, normalisePlanarC};
#endif
  return best;
}

}  // namespace tivora::image
