#include <cstring>

#include "platform/foundation/memory/processor.h"
#include "platform/quartzcore/raster/spans.h"
#include "platform/quartzcore/raster/sweep_row.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define QUELLARO_AVX2 __attribute__((target("avx2,bmi")))

namespace quellaro {

namespace {

// Four pixels at a time, all their components side by side in 16-bit halves. Everything is inlined into sweepAvx2,
// so that nothing made for these processors can be called on others.
class Avx2Blender {
 public:
  QUELLARO_AVX2 explicit Avx2Blender(const Paint& paint)
      : opaque_(paint.alpha() == 255),
        color_(_mm256_set1_epi32(static_cast<int>(paint.color))),
        components_(_mm256_cvtepu8_epi16(_mm256_castsi256_si128(color_))),
        before_(_mm_setzero_si128()) {}

  QUELLARO_AVX2 void begin(std::uint32_t sum) { before_ = _mm_set1_epi32(static_cast<int>(sum)); }

  QUELLARO_AVX2 void gap(std::uint32_t* pixels, std::size_t count) const {
    const __m128i covers = coverages(before_);
    const int cover = _mm_cvtsi128_si32(covers);
    if (cover == 0) return;
    if (cover == 255 && opaque_) return fill(pixels, count);
    for (; count >= kLanes; count -= kLanes, pixels += kLanes) store(pixels, over(load(pixels), covers));
    if (count > 0) overTail(pixels, count, covers);
  }

  QUELLARO_AVX2 void blocks(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count) {
    for (std::uint32_t* const end = cells + count; cells < end; pixels += kLanes, cells += kLanes)
      store(pixels, over(load(pixels), nextCoverages(cells)));
  }

  QUELLARO_AVX2 void lastBlock(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count) {
    overTail(pixels, count, nextCoverages(cells));
  }

 private:
  static constexpr std::size_t kLanes = 4;
  static_assert(kBlockPixels % kLanes == 0);

  QUELLARO_AVX2 static __m128i load(const std::uint32_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  }
  QUELLARO_AVX2 static void store(std::uint32_t* to, __m128i lanes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), lanes);
  }

  QUELLARO_AVX2 static void storeEight(std::uint32_t* to, __m256i lanes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), lanes);
  }

  // The last vector may lie on the one before it.
  QUELLARO_AVX2 void fill(std::uint32_t* pixels, std::size_t count) const {
    std::uint32_t* const end = pixels + count;
    if (count >= 2 * kLanes) {
      for (; pixels + 6 * kLanes < end; pixels += 4 * kLanes) {
        storeEight(pixels, color_);
        storeEight(pixels + 2 * kLanes, color_);
      }
      for (; pixels + 2 * kLanes < end; pixels += 2 * kLanes) storeEight(pixels, color_);
      storeEight(end - 2 * kLanes, color_);
    } else if (count >= kLanes) {
      store(pixels, _mm256_castsi256_si128(color_));
      store(end - kLanes, _mm256_castsi256_si128(color_));
    } else {
      for (; pixels < end; ++pixels) *pixels = static_cast<std::uint32_t>(_mm256_cvtsi256_si32(color_));
    }
  }

  QUELLARO_AVX2 static __m128i coverages(__m128i sums) {
    return _mm_min_epu32(_mm_srli_epi32(_mm_abs_epi32(sums), kCoverBits), _mm_set1_epi32(255));
  }

  // Reads and clears the next cells.
  QUELLARO_AVX2 __m128i nextCoverages(std::uint32_t* cells) {
    __m128i sums = load(cells);
    store(cells, _mm_setzero_si128());
    sums = _mm_add_epi32(sums, _mm_slli_si128(sums, 4));
    sums = _mm_add_epi32(before_, _mm_add_epi32(sums, _mm_slli_si128(sums, 8)));
    before_ = _mm_shuffle_epi32(sums, 0xff);
    return coverages(sums);
  }

  // Rounded, exact for products of two bytes.
  QUELLARO_AVX2 static __m256i multiply(__m256i a, __m256i b) {
    return _mm256_mulhi_epu16(_mm256_add_epi16(_mm256_mullo_epi16(a, b), _mm256_set1_epi16(128)),
                              _mm256_set1_epi16(257));
  }

  // `cover` is 0 to 255 in each lane.
  QUELLARO_AVX2 __m128i over(__m128i below, __m128i cover) const {
    const __m128i toAllComponents = _mm_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
    const __m256i alphaToAll =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(6, 7, 6, 7, 6, 7, 6, 7, 14, 15, 14, 15, 14, 15, 14, 15));
    const __m256i above = multiply(components_, _mm256_cvtepu8_epi16(_mm_shuffle_epi8(cover, toAllComponents)));
    const __m256i inverse = _mm256_sub_epi16(_mm256_set1_epi16(255), _mm256_shuffle_epi8(above, alphaToAll));
    const __m256i sum = _mm256_add_epi16(above, multiply(_mm256_cvtepu8_epi16(below), inverse));
    return _mm_packus_epi16(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1));
  }

  // Less than four pixels: what lies beyond is left alone.
  [[gnu::noinline]] QUELLARO_AVX2 void overTail(std::uint32_t* pixels, std::size_t count, __m128i cover) const {
    std::uint32_t lanes[kLanes] = {};
    std::memcpy(lanes, pixels, count * sizeof *lanes);
    store(lanes, over(load(lanes), cover));
    std::memcpy(pixels, lanes, count * sizeof *lanes);
  }

  static constexpr int kCoverBits = std::countr_zero(kFullCover / 256);

  bool opaque_;
  __m256i color_;       // in every pixel
  __m256i components_;  // of four pixels
  __m128i before_;      // the running sum in every lane
};

QUELLARO_AVX2 __attribute__((flatten)) void sweepAvx2(const SweepArea& area, const Paint& paint) {
  sweepWith<Avx2Blender>(area, paint);
}

constexpr SpanFunctions kAvx2{sweepAvx2};

}  // namespace

const SpanFunctions& fastestSpans() { return hasAvx2AndBmi() ? kAvx2 : vectorSpans(); }

}  // namespace quellaro

#else

const quellaro::SpanFunctions& quellaro::fastestSpans() { return vectorSpans(); }

#endif
