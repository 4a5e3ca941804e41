// The NV12 to RGB pipeline: which image-library calls run, with which arguments, in which order;
// the stages it skips; and the refusals. Real pixels through the stages: examples/.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "Images.h"
#include "RecordingProcessing.h"
#include "fastcv_stub/FastcvControl.h"

namespace {

using tivora::test::Plane;
using Strings = std::vector<std::string>;

// Luma and chroma sizes of a stage; all zero: no buffers for it.
struct Sizes {
  uint32_t yw, yh, ccw, cch;
};

// A luma plane and its interleaved chroma, with room for the turned picture: a turn record keeps
// the unturned size.
struct Pair {
  std::unique_ptr<Plane> y, cc;
  explicit Pair(Sizes s = {}, uint32_t stride = 0) {
    if (s.yw == 0) return;
    y = std::make_unique<Plane>(s.yw, s.yh, stride, std::max(s.yw, s.yh));
    cc = std::make_unique<Plane>(s.ccw, s.cch, stride, std::max(s.ccw, s.cch));
  }
  tvr_image_buf_t* Y() const { return y ? y->get() : nullptr; }
  tvr_image_buf_t* CC() const { return cc ? cc->get() : nullptr; }
};
const Pair kNone;

tvr_err_t convert(const Pair& source, Plane& rgb, tvr_rotation_t rotation, const Pair& down = kNone,
                  const Pair& up = kNone, const Pair& turn = kNone) {
  tivora::test::RecordingProcessing processing;
  return processing.convertNv12ToRgb888(source.Y(), source.CC(), rgb.get(), rotation, down.Y(), down.CC(), up.Y(),
                                        up.CC(), turn.Y(), turn.CC());
}

std::string at(const Plane& p) {
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(p.record.buf.p_base));
  return address;
}
std::string n(uint32_t value) { return std::to_string(value); }

// A call as the journal shows it: a scale from one plane to another (interleaved: widths in pairs),
// a clockwise quarter turn, the colour stage.
std::string scale(const char* name, const Plane& from, const Plane& to, uint32_t unit = 1) {
  return std::string(name) + "(" + at(from) + ", " + n(from.record.size.w / unit) + ", " + n(from.record.size.h) +
         ", " + n(from.record.stride) + ", " + at(to) + ", " + n(to.record.size.w / unit) + ", " + n(to.record.size.h) +
         ", " + n(to.record.stride) + ")";
}
std::string turn(const char* name, const Plane& from, const Plane& to, uint32_t unit = 1) {
  return std::string(name) + "(" + at(from) + ", " + n(from.record.size.w / unit) + ", " + n(from.record.size.h) +
         ", " + n(from.record.stride) + ", " + at(to) + ", " + n(to.record.stride) + ", 1)";
}
std::string colour(const Pair& p, const Plane& rgb) {
  return "fcvColorYCbCr420PseudoPlanarToRGB888u8(" + at(*p.y) + ", " + at(*p.cc) + ", " + n(p.y->record.size.w) + ", " +
         n(p.y->record.size.h) + ", " + n(p.y->record.stride) + ", " + n(p.cc->record.stride) + ", " + at(rgb) + ", " +
         n(rgb.record.stride) + ")";
}

Strings calls() {
  Strings names;
  for (const auto& call : fastcv_stub::journal()) names.push_back(call.name + "(" + call.args + ")");
  return names;
}

TEST(Nv12ToRgbTest, EveryStageGetsTheCurrentPairAndItsOwnBuffers) {
  fastcv_stub::reset();
  const Pair source({64, 48, 64, 24}, 80), down({32, 24, 32, 12}, 40), up({48, 36, 48, 18}, 50);
  const Pair turned({48, 36, 48, 18}, 36);  // unturned sizes; strides for the turned rows
  Plane rgb(144, 36, 150);
  EXPECT_EQ(convert(source, rgb, TVR_ROTATION_90, down, up, turned), 0);
  EXPECT_EQ(
      calls(),
      (Strings{scale("fcvScaleDownMNu8", *source.y, *down.y),
               scale("fcvScaleDownMNInterleaveu8", *source.cc, *down.cc, 2), scale("fcvScaleUpPolyu8", *down.y, *up.y),
               scale("fcvScaleUpPolyInterleaveu8", *down.cc, *up.cc, 2), turn("fcvRotateImageu8", *up.y, *turned.y),
               turn("fcvRotateImageInterleavedu8", *up.cc, *turned.cc, 2), colour(turned, rgb)}));
}

// Scalings to the same size, a turn without its buffers, rotation 0 with them: only the colour
// stage runs, on the source itself.
TEST(Nv12ToRgbTest, StagesThatChangeNothingOrLackBuffersAreSkipped) {
  fastcv_stub::reset();
  const Pair source({64, 48, 64, 24}), same({64, 48, 64, 24});
  Plane rgb(192, 48);
  Pair halfTurn({64, 48, 64, 24});
  halfTurn.y.reset();
  EXPECT_EQ(convert(source, rgb, TVR_ROTATION_180, same, same, halfTurn), 0);
  EXPECT_EQ(convert(source, rgb, TVR_ROTATION_0, kNone, kNone, same), 0);
  EXPECT_EQ(calls(), (Strings{colour(source, rgb), colour(source, rgb)}));
}

// Each refusal returns 12 before the stage it refuses runs: only the earlier stages have.
TEST(Nv12ToRgbTest, RefusalsStopBeforeTheStageTheyRefuse) {
  struct Refusal {
    Sizes source, down, up, turned;
    uint32_t rgbw, rgbh;
    tvr_rotation_t rotation;
    size_t callsBefore;
  };
  // clang-format off
  const Refusal refusals[] = {
      {{64, 48, 64, 24},   {64, 48, 64, 25}, {},               {},               192, 48, TVR_ROTATION_0,  0},
      {{128, 96, 128, 48}, {64, 48, 64, 24}, {32, 24, 64, 24}, {},               192, 48, TVR_ROTATION_0,  2},
      {{64, 48, 64, 24},   {},               {64, 48, 62, 24}, {},               192, 48, TVR_ROTATION_0,  0},
      {{64, 48, 64, 24},   {},               {},               {48, 64, 48, 32}, 192, 48, TVR_ROTATION_90, 0},
      // The colour stage: RGB three times the luma wide and as high; chroma as wide, half as high.
      {{64, 48, 64, 48},   {},               {},               {},               192, 48, TVR_ROTATION_0,  0},
      {{64, 48, 64, 24},   {},               {},               {},               191, 48, TVR_ROTATION_0,  0},
      {{64, 48, 64, 24},   {},               {},               {},               192, 47, TVR_ROTATION_0,  0},
      {{64, 48, 66, 24},   {},               {},               {},               192, 48, TVR_ROTATION_0,  0},
  };
  // clang-format on
  for (size_t i = 0; i < std::size(refusals); ++i) {
    const Refusal& r = refusals[i];
    fastcv_stub::reset();
    Plane rgb(r.rgbw, r.rgbh);
    EXPECT_EQ(convert(Pair(r.source), rgb, r.rotation, Pair(r.down), Pair(r.up), Pair(r.turned)), 12) << i;
    EXPECT_EQ(fastcv_stub::journal().size(), r.callsBefore) << "refusal " << i;
  }
}

}  // namespace
