#include "platform/foundation/xml/xml_characters.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/foundation/text/utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quellaro::xml {

namespace {

constexpr std::uint64_t kEach = 0x0101010101010101;
constexpr std::uint64_t kHighBits = kEach * 0x80;

constexpr std::uint64_t zeroBytes(std::uint64_t eight) { return (eight - kEach) & ~eight & kHighBits; }
constexpr std::uint64_t repeated(char c) { return kEach * static_cast<unsigned char>(c); }

enum : std::uint8_t { kOther = 0, kNamePart = 1, kNameStart = 3 };

constexpr std::array<std::uint8_t, 128> kAsciiNames = [] {
  std::array<std::uint8_t, 128> table{};
  for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_:"))
    table[static_cast<unsigned char>(c)] = kNameStart;
  for (const char c : std::string_view("0123456789-.")) table[static_cast<unsigned char>(c)] = kNamePart;
  return table;
}();

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kNameStarts[] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                 {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                 {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr Range kMoreNameParts[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t count>
bool contains(const Range (&ranges)[count], char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

bool isNamePart(char32_t code, bool first) {
  if (code < 0x80) return kAsciiNames[code] >= (first ? kNameStart : kNamePart);
  return contains(kNameStarts, code) || (!first && contains(kMoreNameParts, code));
}

}  // namespace

bool isCharacter(char32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code < 0xD800 || (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < 0x110000);
}

Character characterAt(const char* p, const char* end) {
  if (p == end) return {};
  const UTF8Sequence sequence = firstUTF8Sequence({p, static_cast<std::size_t>(end - p)});
  if (!sequence.character || !isCharacter(*sequence.character)) return {};
  return {*sequence.character, sequence.length};
}

const char* skipName(const char* p, const char* end) {
  const char* const start = p;
  while (p != end) {
    if (static_cast<unsigned char>(*p) < 0x80) {
      if (!isNamePart(static_cast<unsigned char>(*p), p == start)) break;
      ++p;
      continue;
    }
    const Character character = characterAt(p, end);
    if (character.size == 0 || !isNamePart(character.code, p == start)) break;
    p += character.size;
  }
  return p;
}

const char* skipSpaces(const char* p, const char* end) {
  while (p != end && isSpace(*p)) ++p;
  return p;
}

const char* skipPlain(const char* p, const char* end, char stop) {
#ifdef __SSE2__
  for (; end - p >= 16; p += 16) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    // As signed numbers what lies outside ASCII is less than a blank, too.
    const __m128i found =
        _mm_or_si128(_mm_or_si128(_mm_cmplt_epi8(text, _mm_set1_epi8(' ')), _mm_cmpeq_epi8(text, _mm_set1_epi8(stop))),
                     _mm_or_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8('<')), _mm_cmpeq_epi8(text, _mm_set1_epi8('&'))));
    if (const int bytes = _mm_movemask_epi8(found); bytes != 0)
      return p + std::countr_zero(static_cast<unsigned>(bytes));
  }
#endif
  for (; end - p >= 8; p += 8) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, p, sizeof eight);
    const std::uint64_t controls = (eight - kEach * 0x20) & ~eight & kHighBits;
    const std::uint64_t found = (eight & kHighBits) | controls | zeroBytes(eight ^ repeated('<')) |
                                zeroBytes(eight ^ repeated('&')) | zeroBytes(eight ^ repeated(stop));
    if (found != 0) break;
  }
  for (; p != end; ++p) {
    const auto c = static_cast<unsigned char>(*p);
    if (c < 0x20 || c >= 0x80 || c == '<' || c == '&' || *p == stop) break;
  }
  return p;
}

}  // namespace quellaro::xml
