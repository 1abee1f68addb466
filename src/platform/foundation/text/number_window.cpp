#include "platform/foundation/text/number_window.h"

#include "platform/foundation/memory/processor.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#define QUELLARO_AVX2 [[gnu::target("avx2,bmi,bmi2")]]
#define QUELLARO_INLINE_AVX2 QUELLARO_AVX2 [[gnu::always_inline]] inline

namespace quellaro {

namespace {

constexpr std::size_t kLongest = 8;

// For each length of a number and each count of digits before its point (as many as its length when it has none): which
// of its characters to take, so that the last digit comes last and zeros fill the front.
using Arrangement = std::array<std::uint8_t, kLongest>;

constexpr auto kArrangements = [] {
  constexpr std::uint8_t kZero = 0x80;
  std::array<std::array<Arrangement, kLongest + 1>, kLongest + 1> all{};
  for (std::size_t length = 1; length <= kLongest; ++length)
    for (std::size_t whole = 0; whole <= length; ++whole) {
      Arrangement& arrangement = all[length][whole];
      arrangement.fill(kZero);
      std::size_t to = kLongest;
      for (std::size_t from = length; from-- > 0;)
        if (from != whole) arrangement[--to] = static_cast<std::uint8_t>(from);
    }
  return all;
}();

// What the digits are divided by, for each count of characters behind the whole ones, the point included: of positive
// numbers, and of negative ones, which makes -0 of 0.
constexpr std::array<std::array<double, kLongest + 1>, 2> kDivisors = {
    {{1e0, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7}, {-1e0, -1e0, -1e1, -1e2, -1e3, -1e4, -1e5, -1e6, -1e7}}};

// Bit i of each tells of character i.
struct Characters {
  std::uint64_t digits;
  std::uint64_t points;
  std::uint64_t minuses;
  std::uint64_t others;
};

QUELLARO_INLINE_AVX2 std::uint64_t bits(__m256i bytes) {
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

QUELLARO_INLINE_AVX2 Characters classifyHalf(const char* p, __m256i separators) {
  const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  const __m256i fromZero = _mm256_sub_epi8(text, _mm256_set1_epi8('0'));
  const __m256i digits = _mm256_cmpeq_epi8(_mm256_min_epu8(fromZero, _mm256_set1_epi8(9)), fromZero);
  const __m256i points = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('.'));
  const __m256i minuses = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('-'));
  const __m256i between = _mm256_cmpeq_epi8(_mm256_shuffle_epi8(separators, text), text);
  const __m256i known = _mm256_or_si256(_mm256_or_si256(digits, points), _mm256_or_si256(minuses, between));
  return {bits(digits), bits(points), bits(minuses), bits(known) ^ 0xFFFFFFFF};
}

QUELLARO_INLINE_AVX2 Characters classify(const char* p, const SeparatorTable& separators) {
  const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(separators.data()));
  const Characters low = classifyHalf(p, _mm256_broadcastsi128_si256(table));
  const Characters high = classifyHalf(p + 32, _mm256_broadcastsi128_si256(table));
  return {low.digits | high.digits << 32, low.points | high.points << 32, low.minuses | high.minuses << 32,
          low.others | high.others << 32};
}

// Where the first character is that belongs to no usual number, or else the window's last one: numbers that end there
// or before are whole and usual.
QUELLARO_INLINE_AVX2 unsigned firstUnusual(const Characters& characters) {
  const auto& [digits, points, minuses, others] = characters;
  const std::uint64_t numbers = digits | points;
  const std::uint64_t pointAlone = points & ~(digits << 1) & ~(digits >> 1);
  // A bit that is added behind a number's first point is carried to where its digits end.
  const std::uint64_t secondPoint = ((points << 1) + digits) & points;
  const std::uint64_t minusAlone = minuses & ~(numbers >> 1);
  const std::uint64_t two = numbers & numbers >> 1;
  const std::uint64_t four = two & two >> 2;
  const std::uint64_t tooLong = four & four >> 4 & numbers >> kLongest;
  constexpr std::uint64_t kLast = std::uint64_t{1} << 63;
  return static_cast<unsigned>(std::countr_zero(others | pointAlone | secondPoint | minusAlone | tooLong | kLast));
}

struct Number {
  const char* text;
  const Arrangement* arrangement;
  const double* divisor;
};

// The first one of those that start where `starts` tells.
QUELLARO_INLINE_AVX2 Number firstNumber(const char* p, const Characters& characters, std::uint64_t starts) {
  const auto start = static_cast<std::size_t>(std::countr_zero(starts));
  const auto whole = static_cast<std::size_t>(std::countr_zero(~characters.digits >> start));
  const auto length = static_cast<std::size_t>(std::countr_zero(~(characters.digits | characters.points) >> start));
  const std::size_t negative = characters.minuses << 1 >> start & 1;
  return {p + start, &kArrangements[length][whole], &kDivisors[negative][length - whole]};
}

QUELLARO_INLINE_AVX2 __m128i eightBytesEach(const void* low, const void* high) {
  std::array<std::int64_t, 2> halves;
  std::memcpy(&halves[0], low, sizeof halves[0]);
  std::memcpy(&halves[1], high, sizeof halves[1]);
  return _mm_set_epi64x(halves[1], halves[0]);
}

// Digits are joined to pairs, pairs to fours, fours to the whole, of both numbers at once.
QUELLARO_INLINE_AVX2 __m128d read(const Number& one, const Number& other) {
  const __m128i text = eightBytesEach(one.text, other.text);
  const __m128i secondHalf = _mm_set_epi64x(0x0808080808080808, 0);
  const __m128i arrangement = _mm_or_si128(eightBytesEach(one.arrangement, other.arrangement), secondHalf);
  const __m128i digits = _mm_shuffle_epi8(_mm_sub_epi8(text, _mm_set1_epi8('0')), arrangement);
  const __m128i pairs = _mm_maddubs_epi16(digits, _mm_set1_epi16(1 << 8 | 10));
  const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
  const __m128i whole = _mm_madd_epi16(_mm_packus_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
  const __m128i divisors = eightBytesEach(one.divisor, other.divisor);
  return _mm_div_pd(_mm_cvtepi32_pd(whole), _mm_castsi128_pd(divisors));
}

}  // namespace

bool canScanNumberWindow() { return hasAvx2AndBmi(); }

QUELLARO_AVX2 std::size_t scanNumberWindow(const char*& p, const SeparatorTable& separators, std::span<double> into) {
  const Characters characters = classify(p, separators);
  const std::uint64_t numbers = characters.digits | characters.points;
  const unsigned stop = firstUnusual(characters);
  const std::uint64_t exponent = (p[stop] | 0x20) == 'e' ? 1 : 0;
  const std::uint64_t ends = ~numbers & numbers << 1 & ((std::uint64_t{2} << stop) - 1) & ~(exponent << stop);
  std::uint64_t starts = numbers & ~(numbers << 1);
  const std::size_t count = std::min(into.size(), static_cast<std::size_t>(std::popcount(ends))) / 2 * 2;
  if (count == 0) return 0;
  for (std::size_t i = 0; i < count; i += 2) {
    const std::uint64_t next = starts & (starts - 1);
    _mm_storeu_pd(&into[i], read(firstNumber(p, characters, starts), firstNumber(p, characters, next)));
    starts = next & (next - 1);
  }
  // The last end before the first number that is left.
  p += std::bit_width(ends & ((starts & -starts) - 1)) - 1;
  return count;
}

}  // namespace quellaro

#else

namespace quellaro {

bool canScanNumberWindow() { return false; }

std::size_t scanNumberWindow(const char*& /*p*/, const SeparatorTable& /*separators*/, std::span<double> /*into*/) {
  return 0;
}

}  // namespace quellaro

#endif
