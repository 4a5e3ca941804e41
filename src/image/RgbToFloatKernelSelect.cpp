// Picks the RGB888 to float row kernel for the processor the library runs on.
#include "image/RgbToFloatKernel.h"

namespace tivora::image {

RgbRowToFloatFn rgbRowToFloatKernel() {
#if defined(__aarch64__)
  return rgbRowToFloatNeon;  // NEON is part of every arm64 processor
#elif defined(__x86_64__)
  static const RgbRowToFloatFn best = __builtin_cpu_supports("ssse3") ? rgbRowToFloatSsse3 : rgbRowToFloatC;
  return best;
#else
  return rgbRowToFloatC;
#endif
}

}  // namespace tivora::image
