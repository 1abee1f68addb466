#include "platform/coregraphics/path_points.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace quellaro {

static_assert(sizeof(CGPoint) == 2 * sizeof(double));

// False at the first point that would not come back as it was, to the sign of a zero.
bool PathPoints::packAll(std::span<const CGPoint> points, double power, Packed* into) {
  for (const CGPoint& point : points) {
#ifdef __SSE2__
    const __m128d pair = _mm_loadu_pd(&point.x);
    // What is too large becomes the smallest integer, and so does not come back.
    const __m128i whole = _mm_cvtpd_epi32(_mm_mul_pd(pair, _mm_set1_pd(power)));
    const __m128d back = _mm_div_pd(_mm_cvtepi32_pd(whole), _mm_set1_pd(power));
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_castpd_si128(back), _mm_castpd_si128(pair))) != 0xFFFF) return false;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(into), whole);
#else
    constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
    const double x = std::nearbyint(point.x * power);
    const double y = std::nearbyint(point.y * power);
    if (!(std::abs(x) <= kLargest && std::abs(y) <= kLargest)) return false;
    *into = {static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)};
    const CGPoint back = unpacked(*into, power);
    const auto same = [](double a, double b) {
      return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    };
    if (!same(back.x, point.x) || !same(back.y, point.y)) return false;
#endif
    ++into;
  }
  return true;
}

std::vector<CGPoint> PathPoints::values() const {
  std::vector<CGPoint> values(count_);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = (*this)[i];
  return values;
}

PathPoints PathPoints::keep(std::span<const CGPoint> points, std::pmr::memory_resource& memory) {
  PathPoints kept(points);
  if (points.empty()) return {};
  // Which number of decimals it is shows at the first points; the others only confirm it.
  constexpr std::size_t kFirst = 4;
  std::array<Packed, kFirst> tried{};
  Packed* packed = nullptr;
  for (std::size_t decimals = 0; decimals < kPowers.size(); ++decimals) {
    if (!packAll(points.first(std::min(kFirst, points.size())), kPowers[decimals], tried.data())) continue;
    if (packed == nullptr)
      packed = static_cast<Packed*>(memory.allocate(points.size() * sizeof(Packed), alignof(Packed)));
    if (packAll(points, kPowers[decimals], packed)) {
      kept.data_ = packed;
      kept.decimals_ = static_cast<std::int32_t>(decimals);
      return kept;
    }
  }
  auto* const copy = static_cast<CGPoint*>(memory.allocate(points.size_bytes(), alignof(CGPoint)));
  std::uninitialized_copy(points.begin(), points.end(), copy);
  kept.data_ = copy;
  return kept;
}

}  // namespace quellaro
