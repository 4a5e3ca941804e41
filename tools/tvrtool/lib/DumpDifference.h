// How far apart two dumps of the same buffer are, sample by sample: NV12 per plane (Y, and the
// chroma plane's Cb and Cr), RGB per channel, float tensors per element (in three channels c0..c2
// when a row holds whole pixels), and a heat map of where they differ.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DisplayImage.h"
#include "DumpName.h"

namespace tvrtool {

// One plane or channel of a dump: samples `step` apart along a row, rows `rowStride` apart, from
// sample `offset` on; each covers `scale` x `scale` pixels of the picture.
struct SampleComponent {
  std::string name;  // "Y", "Cb", "R", "c0", "element"
  uint64_t offset;
  uint32_t width, height, rowStride, step, scale;
};

// How a dump's bytes are read as samples.
struct DumpSamples {
  bool isFloat = false;            // 32-bit floats, else bytes
  uint32_t width = 0, height = 0;  // the picture, in pixels
  uint64_t bytes = 0;              // what the file must hold
  std::vector<SampleComponent> components;
};

// The samples of a dump named `name` whose file holds `fileBytes` bytes: an NV12 (nv21, yuv)
// dump whose file is larger than its height says was allocated with more rows (scanline). On
// failure returns nothing and `error` says why: a format it cannot read, a size that does not fit
// ("truncated: 1000 of 3110400 bytes").
std::optional<DumpSamples> dumpSamples(const FileName& name, uint64_t fileBytes, std::string& error);

struct ComponentDifference {
  std::string name;
  uint64_t samples = 0;
  uint64_t differing = 0;  // more apart than the tolerance
  double maxAbs = 0;       // inf where one side is NaN and the other is not
  double sumAbs = 0;
  double sumSquares = 0;
  uint64_t firstAt = UINT64_MAX;  // the sample offset of the first differing sample
  uint32_t firstX = 0, firstY = 0;
};

struct Difference {
  std::vector<ComponentDifference> components;
  uint64_t samples = 0, differing = 0;
  double maxAbs = 0, meanAbs = 0;
  double psnr = 0;    // dB; +inf when identical. Peak: 255, or the range of A's floats
  std::string first;  // "x 12, y 4, Cb": the first differing sample in the file's order; "" when none
  DisplayImage heat;  // A's picture dimmed, with the differences in red to white by size
};

// Compares A and B, which `dumpSamples` read alike (same picture size and components; the row
// layout may differ). Samples more than `tolerance` apart differ.
Difference compareDumps(const DumpSamples& layoutA, const uint8_t* a, const DumpSamples& layoutB, const uint8_t* b,
                        double tolerance);

}  // namespace tvrtool
