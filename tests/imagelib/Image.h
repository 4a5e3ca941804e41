// Image planes for the image library's tests: rows with padding up to a stride larger than the row,
// guard bytes before and after, all filled with a canary value, and a start address that is not
// aligned, so that tests catch writes outside a destination's rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace imagelib {

class Plane {
 public:
  static constexpr uint8_t kCanary = 0xA5;
  static constexpr std::size_t kGuard = 13;  // odd: the plane's start is not aligned

  // `rowBytes` bytes of image in each of `rows` rows, `padding` more bytes to the next row.
  Plane(uint32_t rowBytes, uint32_t rows, uint32_t padding = 5)
      : rowBytes_(rowBytes),
        rows_(rows),
        stride_(rowBytes + padding),
        memory_(2 * kGuard + std::size_t{stride_} * rows, kCanary) {}

  uint8_t* data() { return memory_.data() + kGuard; }
  const uint8_t* data() const { return memory_.data() + kGuard; }
  uint8_t* row(uint32_t y) { return data() + std::size_t{y} * stride_; }
  const uint8_t* row(uint32_t y) const { return data() + std::size_t{y} * stride_; }
  uint8_t& at(uint32_t x, uint32_t y) { return row(y)[x]; }
  uint8_t at(uint32_t x, uint32_t y) const { return row(y)[x]; }
  uint32_t rowBytes() const { return rowBytes_; }
  uint32_t rows() const { return rows_; }
  uint32_t stride() const { return stride_; }

  // Whether every byte outside the rows' image bytes still holds the canary.
  bool canariesIntact() const {
    for (std::size_t i = 0; i < memory_.size(); ++i) {
      const std::size_t offset = i - kGuard;  // wraps for the leading guard
      const bool inImage = i >= kGuard && offset < std::size_t{stride_} * rows_ && offset % stride_ < rowBytes_;
      if (!inImage && memory_[i] != kCanary) return false;
    }
    return true;
  }

  // Image bytes as one vector, row after row, without the padding.
  std::vector<uint8_t> pixels() const {
    std::vector<uint8_t> out;
    for (uint32_t y = 0; y < rows_; ++y) out.insert(out.end(), row(y), row(y) + rowBytes_);
    return out;
  }

 private:
  uint32_t rowBytes_;
  uint32_t rows_;
  uint32_t stride_;
  std::vector<uint8_t> memory_;
};

// Camera-like content: a diagonal gradient with noise of +-`noise`, reproducible by `seed`.
inline void fillNatural(Plane& plane, unsigned seed, int noise = 12) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> jitter(-noise, noise);
  const uint32_t span = plane.rowBytes() + plane.rows();
  for (uint32_t y = 0; y < plane.rows(); ++y) {
    for (uint32_t x = 0; x < plane.rowBytes(); ++x) {
      const int value = static_cast<int>((x + y) * 255 / span) + jitter(random);
      plane.at(x, y) = static_cast<uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value));
    }
  }
}

// The widths and heights the image tests cover: around the sizes of vector registers.
inline const std::vector<uint32_t>& testWidths() {
  static const std::vector<uint32_t> widths{1, 2, 3, 15, 16, 17, 33};
  return widths;
}
inline const std::vector<uint32_t>& testHeights() {
  static const std::vector<uint32_t> heights{1, 2, 3, 5, 8};
  return heights;
}

}  // namespace imagelib
