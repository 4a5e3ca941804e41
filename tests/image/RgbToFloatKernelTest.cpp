// The per-architecture RGB888 to float row kernels against the reference kernel: bit for bit, for
// every block/tail split, unaligned rows, both orders and means that make the subtraction wrap.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <vector>

#include "image/RgbToFloatKernel.h"

namespace {

using tivora::image::RgbRowToFloatFn;

struct Kernel {
  const char* name;
  RgbRowToFloatFn run;
};

std::vector<Kernel> kernels() {
  std::vector<Kernel> all{{"selected", tivora::image::rgbRowToFloatKernel()}};
#if defined(__aarch64__)
  all.push_back({"neon", tivora::image::rgbRowToFloatNeon});
#endif
#if defined(__x86_64__)
  if (__builtin_cpu_supports("ssse3")) all.push_back({"ssse3", tivora::image::rgbRowToFloatSsse3});
#endif
  return all;
}

constexpr float kCanary = -12345.5f;
constexpr size_t kGuard = 7;

TEST(RgbToFloatKernelTest, FastKernelsMatchTheReferenceBitForBit) {
  std::mt19937 random(11);
  const std::vector<Kernel> all = kernels();
  for (const Kernel& kernel : all) {
    for (uint32_t pixels : {1u, 2u, 3u, 15u, 16u, 17u, 31u, 32u, 33u, 1921u}) {
      for (size_t misalign : {size_t{0}, size_t{1}, size_t{3}}) {
        for (int32_t mean : {0, 128, -7, INT_MIN, INT_MAX}) {
          for (bool reverse : {false, true}) {
            const size_t samples = size_t{pixels} * 3;
            std::vector<uint8_t> src(samples + misalign);
            for (auto& byte : src) byte = static_cast<uint8_t>(random());
            const float scale = (random() % 2 ? 1.0f : -1.0f) / static_cast<float>(1 + random() % 255);
            std::vector<float> expected(samples), got(samples + misalign + 2 * kGuard, kCanary);
            tivora::image::rgbRowToFloatC(src.data() + misalign, expected.data(), pixels, mean, scale, reverse);
            float* out = got.data() + kGuard + misalign;
            kernel.run(src.data() + misalign, out, pixels, mean, scale, reverse);
            ASSERT_EQ(std::memcmp(out, expected.data(), samples * sizeof(float)), 0)
                << kernel.name << " pixels " << pixels << " misalign " << misalign << " mean " << mean
                << " reverse " << reverse;
            for (size_t i = 0; i < kGuard + misalign; ++i) ASSERT_EQ(got[i], kCanary) << kernel.name;
            for (size_t i = kGuard + misalign + samples; i < got.size(); ++i) ASSERT_EQ(got[i], kCanary) << kernel.name;
          }
        }
      }
    }
  }
}

TEST(RgbToFloatKernelTest, ReferenceIsTheFormula) {
  const uint8_t rgb[6] = {0, 100, 255, 1, 2, 3};
  float out[6];
  tivora::image::rgbRowToFloatC(rgb, out, 2, 100, 0.5f, true);
  EXPECT_EQ(std::vector<float>(out, out + 6), (std::vector<float>{77.5f, 0.0f, -50.0f, -48.5f, -49.0f, -49.5f}));
}

}  // namespace
