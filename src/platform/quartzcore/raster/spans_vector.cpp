#include <cstring>

#include "platform/quartzcore/raster/spans.h"
#include "platform/quartzcore/raster/sweep_row.h"

namespace quellaro {

namespace {

// Four pixels, one in each lane. The compiler's vector types become SSE2 on x86-64 and NEON on AArch64, which every
// such processor has.
using Pixels = std::uint32_t __attribute__((vector_size(16)));
using SignedLanes = std::int32_t __attribute__((vector_size(16)));
// The two bytes of every 16-bit half hold one colour component: even components (blue, red) or odd ones (green, alpha).
using Components = std::uint16_t __attribute__((vector_size(16)));

constexpr std::uint32_t kEven = 0x00ff00ff;

Pixels load(const std::uint32_t* from) {
  Pixels lanes;
  std::memcpy(&lanes, from, sizeof lanes);
  return lanes;
}

void store(std::uint32_t* to, Pixels lanes) { std::memcpy(to, &lanes, sizeof lanes); }

Components even(Pixels p) { return reinterpret_cast<Components>(p & kEven); }
Components odd(Pixels p) { return reinterpret_cast<Components>((p >> 8) & kEven); }
Pixels join(Components evens, Components odds) {
  return reinterpret_cast<Pixels>(evens) | (reinterpret_cast<Pixels>(odds) << 8);
}
Components multiply(Components a, Components b) {
  const Components product = a * b + 128;
  return (product + (product >> 8)) >> 8;
}

constexpr std::size_t kLanes = 4;
static_assert(kBlockPixels % kLanes == 0);

// Lanes move up by one or two, zeros come in.
Pixels runningSum(Pixels p) {
  const Pixels zero{};
  p += __builtin_shufflevector(zero, p, 0, 4, 5, 6);
  p += __builtin_shufflevector(zero, p, 0, 1, 4, 5);
  return p;
}

Pixels coverages(Pixels sums) {
  const auto sign = reinterpret_cast<SignedLanes>(sums) >> 31;
  const Pixels magnitude =
      ((sums ^ reinterpret_cast<Pixels>(sign)) - reinterpret_cast<Pixels>(sign)) / (kFullCover / 256);
  const auto saturated = reinterpret_cast<Pixels>(reinterpret_cast<SignedLanes>(magnitude) > 255);
  return (magnitude | saturated) & 255;
}

class VectorBlender {
 public:
  explicit VectorBlender(const Paint& paint)
      : color_(paint.color),
        opaque_(paint.alpha() == 255),
        evens_(even(Pixels{} + color_)),
        odds_(odd(Pixels{} + color_)) {}

  void begin(std::uint32_t sum) { before_ = Pixels{} + sum; }

  void gap(std::uint32_t* pixels, std::size_t count) const {
    const std::uint32_t cover = coverage(before_[0]);
    if (cover == 0) return;
    if (cover == 255 && opaque_) {
      for (; count >= kLanes; count -= kLanes, pixels += kLanes) store(pixels, Pixels{} + color_);
      for (; count > 0; --count) *pixels++ = color_;
      return;
    }
    const Pixels covers = Pixels{} + cover;
    for (; count >= kLanes; count -= kLanes, pixels += kLanes) store(pixels, over(load(pixels), covers));
    if (count > 0) overTail(pixels, count, covers);
  }

  void blocks(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count) {
    for (std::uint32_t* const end = cells + count; cells < end; pixels += kLanes, cells += kLanes)
      store(pixels, over(load(pixels), nextCoverages(cells)));
  }

  void lastBlock(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count) {
    overTail(pixels, count, nextCoverages(cells));
  }

 private:
  Pixels nextCoverages(std::uint32_t* cells) {
    const Pixels sums = before_ + runningSum(load(cells));
    store(cells, Pixels{});
    before_ = __builtin_shufflevector(sums, sums, 3, 3, 3, 3);
    return coverages(sums);
  }

  // `cover` is 0 to 255 in each lane.
  Pixels over(Pixels below, Pixels cover) const {
    const auto covers = reinterpret_cast<Components>(cover | (cover << 16));
    const Components aboveEvens = multiply(evens_, covers);
    const Components aboveOdds = multiply(odds_, covers);
    const Pixels alpha = reinterpret_cast<Pixels>(aboveOdds) >> 16;
    const Components inverse = 255 - reinterpret_cast<Components>(alpha | (alpha << 16));
    return join(aboveEvens + multiply(even(below), inverse), aboveOdds + multiply(odd(below), inverse));
  }

  // Less than four pixels: what lies beyond is left alone.
  [[gnu::noinline]] void overTail(std::uint32_t* pixels, std::size_t count, Pixels cover) const {
    std::uint32_t lanes[kLanes] = {};
    std::memcpy(lanes, pixels, count * sizeof *lanes);
    store(lanes, over(load(lanes), cover));
    std::memcpy(pixels, lanes, count * sizeof *lanes);
  }

  std::uint32_t color_;
  bool opaque_;
  // The paint in every lane.
  Components evens_, odds_;
  Pixels before_{};  // the running sum in every lane
};

constexpr SpanFunctions kVector{sweepWith<VectorBlender>};

}  // namespace

const SpanFunctions& vectorSpans() { return kVector; }

}  // namespace quellaro
