// The image operations on arbitrary records: sizes, strides, crops, formats, rotations, means,
// divisors and orders come from the input; every record's memory is exactly as large as the
// record claims (PlaneExtents.h), so any byte read or written beyond it is reported. Sizes are
// capped so that a run stays fast. Outputs are checked where a reference is cheap.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <cstring>
#include <string>

#include "DeviceDirs.h"
#include "DevicePaths.h"
#include "PlaneExtents.h"
#include "RecordingProcessing.h"
#include "TivoraBase.h"
#include "fastcv_stub/FastcvControl.h"
#include "image/RgbToFloatKernel.h"

namespace {

using tivora::fuzz::chromaRowBytes;
using tivora::fuzz::extent;
using tivora::fuzz::Plane;

constexpr uint32_t kMaxSide = 96;
constexpr uint32_t kMaxStride = 224;
constexpr uint64_t kMaxBuffer = 8u << 20;  // largest createImageBuf the harness lets through

void require(bool condition) {
  if (!condition) std::abort();
}

// The protected image operations, opened up by the tests' processing (its hooks never run here).
using ImageOps = tivora::test::RecordingProcessing;

uint32_t side(FuzzedDataProvider& in) { return in.ConsumeIntegralInRange<uint32_t>(0, kMaxSide); }
uint32_t stride(FuzzedDataProvider& in) { return in.ConsumeIntegralInRange<uint32_t>(0, kMaxStride); }
// Mostly the value that fits, sometimes any other.
uint32_t usually(FuzzedDataProvider& in, uint32_t fitting) { return in.ConsumeBool() ? fitting : side(in); }

// ---- createImageBuf / deleteImageBuf ----------------------------------------------------------

// The byte size createImageBuf computes, to keep requests small (and to check the record).
uint64_t createdSize(uint32_t w, uint32_t h, uint32_t s, tvr_image_format_t format, uint64_t pixel) {
  if (s < w) s = w;
  const auto f = static_cast<uint32_t>(format);
  if (f <= 3) {
    s = static_cast<uint32_t>(static_cast<int32_t>(s) / 2 * 2);
    return static_cast<uint32_t>(pixel * static_cast<uint32_t>(s * h) * 3u / 2u);
  }
  if (f <= 6) return static_cast<uint32_t>(static_cast<uint32_t>(pixel) * h * s);
  return 0;
}

void createAndDelete(ImageOps& ops, FuzzedDataProvider& in) {
  const uint32_t w = in.ConsumeIntegralInRange<uint32_t>(0, 4096);
  const uint32_t h = in.ConsumeIntegralInRange<uint32_t>(0, 4096);
  const uint32_t s = in.ConsumeBool() ? in.ConsumeIntegral<uint32_t>() : in.ConsumeIntegralInRange<uint32_t>(0, 8192);
  const auto format = static_cast<tvr_image_format_t>(in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(0, 10)
                                                                       : in.ConsumeIntegral<int32_t>());
  const uint64_t pixel = in.ConsumeBool() ? in.ConsumeIntegralInRange<uint64_t>(0, 8) : in.ConsumeIntegral<uint64_t>();
  const uint64_t size = createdSize(w, h, s, format, pixel);
  if (size > kMaxBuffer) return;
  const bool failAlloc = in.ConsumeBool();
  const int allocationsBefore = fastcv_stub::liveAllocations();
  if (failAlloc) fastcv_stub::failMemAlloc(1);
  tvr_image_buf_t* image = ops.createImageBuf(w, h, s, format, pixel);
  fastcv_stub::failMemAlloc(0);
  if (image == nullptr) {
    require(failAlloc && format == TVR_FORMAT_YUV420SP_UV_TP10_UBWC);
  } else {
    require(image->buf.buf_size == size && image->offset[0] == 0 && image->scanline == h);
    std::memset(image->buf.p_base, 0x5a, image->buf.buf_size);  // every byte the record claims
  }
  ops.deleteImageBuf(image);
  require(fastcv_stub::liveAllocations() == allocationsBefore);
}

// ---- splitYUV420SP / splitYUV420P ---------------------------------------------------------------

// The source frame: a crop somewhere in a buffer that holds every byte the split will read.
struct Frame {
  int32_t x, y;
  uint32_t w, h, s;
  uint32_t offset[3];
};

Frame frameOf(FuzzedDataProvider& in) {
  Frame f{};
  f.x = in.ConsumeIntegralInRange<int32_t>(-8, 40);
  f.y = in.ConsumeIntegralInRange<int32_t>(-8, 40);
  f.w = side(in);
  f.h = side(in);
  f.s = stride(in);
  for (uint32_t& o : f.offset) o = in.ConsumeIntegralInRange<uint32_t>(0, 64 * 1024);
  return f;
}

// Byte range [first, end) that `rows` rows of `bytes` read from `start`, `stride` apart.
struct Span {
  int64_t first = 0, end = 0;
};
Span span(int64_t start, int64_t stride, int64_t bytes, int64_t rows) {
  if (rows <= 0 || bytes <= 0) return {};
  const int64_t last = start + (rows - 1) * stride;
  return {start < last ? start : last, (start > last ? start : last) + bytes};
}

// Row r of the destination plane holds `bytes` bytes of the source from start + r x stride.
void expectRowsCopied(const uint8_t* source, int64_t start, int64_t stride, const Plane& plane, uint32_t bytes,
                      uint32_t rows) {
  if (rows > 1 && plane.record.stride < bytes) return;  // overlapping rows: later ones overwrite
  for (uint32_t r = 0; r < rows; ++r) {
    require(std::memcmp(plane.base() + static_cast<size_t>(plane.record.stride) * r, source + start + r * stride,
                        bytes) == 0);
  }
}

void splitSemiPlanar(ImageOps& ops, FuzzedDataProvider& in) {
  const Frame f = frameOf(in);
  const tvr_image_format_t format =
      static_cast<tvr_image_format_t>(in.ConsumeBool() ? TVR_FORMAT_NV12 + in.ConsumeIntegralInRange<int32_t>(0, 1)
                                                       : in.ConsumeIntegral<int32_t>());
  const int64_t lumaStart = int64_t{f.y} * f.s + f.x;
  const int64_t chromaStart = int64_t{f.offset[1]} + int64_t{f.y / 2} * f.s + f.x;
  const Span luma = span(lumaStart, f.s, f.w, f.h);
  const Span chroma = span(chromaStart, f.s, f.w, f.h / 2);
  if (luma.first < 0 || chroma.first < 0) return;  // a crop before the buffer: no record claims that
  const uint64_t sourceBytes = static_cast<uint64_t>(luma.end > chroma.end ? luma.end : chroma.end);

  Plane source(f.w, f.h, f.s, sourceBytes);
  source.record.format = format;
  source.record.crop = {{f.x, f.y}, {f.w, f.h}};
  source.record.offset[1] = f.offset[1];
  const uint32_t yw = usually(in, f.w), yh = usually(in, f.h), ys = stride(in);
  Plane y(yw, yh, ys, extent(yh, yw, ys));
  const uint32_t cw = usually(in, f.w), ch = usually(in, f.h / 2), cs = stride(in);
  Plane cc(cw, ch, cs, extent(ch, cw, cs));
  if (ops.splitYUV420SP(&source.record, &y.record, &cc.record) != TVR_OK) return;
  expectRowsCopied(source.base(), lumaStart, f.s, y, f.w, f.h);
  expectRowsCopied(source.base(), chromaStart, f.s, cc, f.w, f.h / 2);
}

void splitPlanar(ImageOps& ops, FuzzedDataProvider& in) {
  const Frame f = frameOf(in);
  const tvr_image_format_t format = static_cast<tvr_image_format_t>(
      in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(0, 1) : in.ConsumeIntegral<int32_t>());
  const int64_t lumaStart = int64_t{f.offset[0]} + int64_t{f.y} * f.s + f.x;
  const int64_t chromaStart = int64_t{f.y / 2} * f.s + f.x / 2;
  const Span luma = span(lumaStart, f.s, f.w, f.h);
  const Span u = span(f.offset[1] + chromaStart, f.s, f.w / 2, f.h / 2);
  const Span v = span(f.offset[2] + chromaStart, f.s, f.w / 2, f.h / 2);
  if (luma.first < 0 || u.first < 0 || v.first < 0) return;
  int64_t end = luma.end;
  if (u.end > end) end = u.end;
  if (v.end > end) end = v.end;

  Plane source(f.w, f.h, f.s, static_cast<uint64_t>(end));
  source.record.format = format;
  source.record.crop = {{f.x, f.y}, {f.w, f.h}};
  std::memcpy(source.record.offset, f.offset, sizeof f.offset);
  const uint32_t yw = usually(in, f.w), yh = usually(in, f.h), ys = stride(in);
  Plane y(yw, yh, ys, extent(yh, yw, ys));
  const uint32_t uw = usually(in, f.w / 2), uh = usually(in, f.h / 2), us = stride(in);
  Plane uPlane(uw, uh, us, extent(uh, uw, us));
  const uint32_t vw = usually(in, f.w / 2), vh = usually(in, f.h / 2), vs = stride(in);
  Plane vPlane(vw, vh, vs, extent(vh, vw, vs));
  if (ops.splitYUV420P(&source.record, &y.record, &uPlane.record, &vPlane.record) != TVR_OK) return;
  expectRowsCopied(source.base(), lumaStart, f.s, y, f.w, f.h);
  expectRowsCopied(source.base(), f.offset[1] + chromaStart, f.s, uPlane, f.w / 2, f.h / 2);
  expectRowsCopied(source.base(), f.offset[2] + chromaStart, f.s, vPlane, f.w / 2, f.h / 2);
}

// ---- convertNv12ToRgb888 ------------------------------------------------------------------------

// A luma record and its chroma record, each as large as it claims.
struct PlanePair {
  Plane y, cc;
};

Plane lumaPlane(FuzzedDataProvider& in, uint32_t w, uint32_t h, bool turned) {
  const uint32_t s = in.ConsumeBool() ? w + in.ConsumeIntegralInRange<uint32_t>(0, 16) : stride(in);
  uint64_t bytes = extent(h, w, s);
  if (turned) bytes = std::max(bytes, extent(w, h, s));
  return Plane(w, h, s, bytes);
}

Plane chromaPlane(FuzzedDataProvider& in, uint32_t w, uint32_t h, bool turned) {
  const uint32_t s = in.ConsumeBool() ? w + in.ConsumeIntegralInRange<uint32_t>(0, 16) : stride(in);
  uint64_t bytes = extent(h, chromaRowBytes(w), s);
  if (turned) bytes = std::max(bytes, extent(w >> 1, uint64_t{h} * 2, s));
  return Plane(w, h, s, bytes);
}

// A stage's pair: mostly the sizes a pipeline would use, sometimes anything.
PlanePair stagePair(FuzzedDataProvider& in, uint32_t w, uint32_t h, bool turned) {
  const uint32_t yw = usually(in, w), yh = usually(in, h);
  Plane y = lumaPlane(in, yw, yh, turned);
  const uint32_t cw = usually(in, yw), ch = usually(in, yh / 2);
  Plane cc = chromaPlane(in, cw, ch, turned);
  return {std::move(y), std::move(cc)};
}

void nv12ToRgb(ImageOps& ops, FuzzedDataProvider& in) {
  const uint32_t w = side(in), h = side(in);
  PlanePair source = stagePair(in, w, h, false);
  const bool down = in.ConsumeBool(), up = in.ConsumeBool(), turn = in.ConsumeBool();
  const uint32_t downW = in.ConsumeIntegralInRange<uint32_t>(0, w), downH = in.ConsumeIntegralInRange<uint32_t>(0, h);
  PlanePair scaledDown = stagePair(in, downW, downH, false);
  const uint32_t upW = side(in), upH = side(in);
  PlanePair scaledUp = stagePair(in, upW, upH, false);
  PlanePair turned = stagePair(in, upW, upH, true);
  const auto rotation = static_cast<tvr_rotation_t>(in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(0, 3)
                                                                     : in.ConsumeIntegral<int32_t>());
  const uint32_t rgbW = usually(in, 3 * upW), rgbH = usually(in, upH);
  const uint32_t rgbS = in.ConsumeBool() ? rgbW : in.ConsumeIntegralInRange<uint32_t>(0, 3 * kMaxStride);
  Plane rgb(rgbW, rgbH, rgbS, extent(rgbH, rgbW, rgbS));
  ops.convertNv12ToRgb888(&source.y.record, &source.cc.record, &rgb.record, rotation,
                          down ? &scaledDown.y.record : nullptr, down ? &scaledDown.cc.record : nullptr,
                          up ? &scaledUp.y.record : nullptr, up ? &scaledUp.cc.record : nullptr,
                          turn ? &turned.y.record : nullptr, turn ? &turned.cc.record : nullptr);
}

// ---- convertRGB888ToFloat -----------------------------------------------------------------------

void rgbToFloat(ImageOps& ops, FuzzedDataProvider& in) {
  // Whole pixels are converted: a width that is no multiple of 3 has its last pixel read whole.
  const auto wholePixels = [](uint32_t w) { return uint64_t{(w + 2) / 3} * 3; };
  const uint32_t w = in.ConsumeIntegralInRange<uint32_t>(0, 3 * kMaxSide), h = side(in);
  const uint32_t s = in.ConsumeBool() ? w : in.ConsumeIntegralInRange<uint32_t>(0, 3 * kMaxStride);
  Plane source(w, h, s, extent(h, wholePixels(w), s));
  const uint32_t dw = usually(in, w), dh = usually(in, h);
  const uint32_t ds = in.ConsumeBool() ? dw : in.ConsumeIntegralInRange<uint32_t>(0, 3 * kMaxStride);
  Plane destination(dw, dh, ds, extent(dh, wholePixels(dw), ds) * sizeof(float));
  const int mean = in.ConsumeBool() ? in.ConsumeIntegralInRange<int>(-300, 300) : in.ConsumeIntegral<int>();
  const int divisor = in.ConsumeBool() ? in.ConsumeIntegralInRange<int>(-2, 256) : in.ConsumeIntegral<int>();
  const auto order = static_cast<tivora::TivoraBase::RgbOrder>(in.ConsumeIntegralInRange<int>(-1, 2));
  if (ops.convertRGB888ToFloat(&source.record, &destination.record, mean, divisor, order) != TVR_OK || w == 0 ||
      h == 0) {
    return;
  }
  // Every output against the plain reference kernel, bit for bit.
  const float scale = static_cast<float>(1.0 / divisor);
  const auto pixels = static_cast<uint32_t>(wholePixels(w) / 3);
  if (h > 1 && ds < pixels * 3) return;  // overlapping rows: later ones overwrite
  std::unique_ptr<float[]> row(new float[pixels * 3]);
  const auto* out = reinterpret_cast<const float*>(destination.base());
  for (uint32_t r = 0; r < h; ++r) {
    tivora::image::rgbRowToFloatC(source.base() + size_t{s} * r, row.get(), pixels, mean, scale,
                                  order == tivora::TivoraBase::RGB_ORDER_REVERSE);
    require(std::memcmp(out + size_t{ds} * r, row.get(), pixels * 3 * sizeof(float)) == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Every level on: each operation's messages are formatted too.
  tivora::fuzz::writeFileOrDie(std::string(tivora::paths::kVendorCameraDir) + "/VEXA_TVR.dat", "TivoraLogLevel=V\n");
  fastcv_stub::setJournaling(false);  // the journal would grow for the whole run
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static ImageOps& ops = *new ImageOps;  // one processing for the whole run, never released
  FuzzedDataProvider in(data, size);
  while (in.remaining_bytes() > 0) {
    switch (in.ConsumeIntegralInRange<int>(0, 4)) {
      case 0: createAndDelete(ops, in); break;
      case 1: splitSemiPlanar(ops, in); break;
      case 2: splitPlanar(ops, in); break;
      case 3: nv12ToRgb(ops, in); break;
      default: rgbToFloat(ops, in); break;
    }
  }
  return 0;
}
