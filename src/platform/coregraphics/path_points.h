#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "platform/coregraphics/geometry.h"

namespace quellaro {

// The points of an outline, read only. A cue keeps millions of them, and most were written with the same few decimals:
// these are kept as 32-bit whole numbers, half the size of doubles, and come back as exactly the doubles they were.
class PathPoints {
 public:
  PathPoints() = default;
  explicit PathPoints(std::span<const CGPoint> points)
      : data_(points.data()), count_(static_cast<std::uint32_t>(points.size())) {}

  // A copy as small as can be, in memory that must outlive it.
  static PathPoints keep(std::span<const CGPoint> points, std::pmr::memory_resource& memory);

  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  CGPoint operator[](std::size_t index) const {
    if (decimals_ < 0) return static_cast<const CGPoint*>(data_)[index];
    return unpacked(static_cast<const Packed*>(data_)[index], kPowers[static_cast<std::size_t>(decimals_)]);
  }
  CGPoint back() const { return (*this)[count_ - 1U]; }
  // All of them, for whoever wants them side by side.
  std::vector<CGPoint> values() const;

 private:
  struct Packed {
    std::int32_t x;
    std::int32_t y;
  };
  static constexpr std::array<double, 7> kPowers = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};

  static bool packAll(std::span<const CGPoint> points, double power, Packed* into);
  // Division is what reading a decimal number ends with, so that both give the same double.
  static CGPoint unpacked(const Packed& packed, double power) {
#ifdef __SSE2__
    const __m128i whole = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&packed));
    CGPoint point;
    _mm_storeu_pd(&point.x, _mm_div_pd(_mm_cvtepi32_pd(whole), _mm_set1_pd(power)));
    return point;
#else
    return {packed.x / power, packed.y / power};
#endif
  }

  const void* data_ = nullptr;
  std::uint32_t count_ = 0;
  // Negative: doubles.
  std::int32_t decimals_ = -1;
};

}  // namespace quellaro
