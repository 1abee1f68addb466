#include "platform/foundation/text/utf8.h"

#include <clocale>
#include <cstdint>
#include <cwctype>
#include <optional>

namespace quellaro {

namespace {

// The only character whose lower case is two.
constexpr char32_t kCapitalIWithDot = 0x130;

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// A control character of ASCII or of the block behind it, the latter by its two bytes.
bool isControl(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(at) < 0x20 || byte(at) == 0x7f) return true;
  return byte(at) == 0xc2 && at + 1 < text.size() && byte(at + 1) >= 0x80 && byte(at + 1) < 0xa0;
}

bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; }

// The smallest and largest second byte that a lead byte allows: what keeps out overlong forms, surrogates and
// characters beyond U+10FFFF.
struct SecondByte {
  std::uint8_t smallest = 0x80;
  std::uint8_t largest = 0xBF;
};

SecondByte secondByteAfter(std::uint8_t lead) {
  switch (lead) {
    case 0xE0:
      return {0xA0, 0xBF};
    case 0xED:
      return {0x80, 0x9F};
    case 0xF0:
      return {0x90, 0xBF};
    case 0xF4:
      return {0x80, 0x8F};
    default:
      return {};
  }
}

// Part of the C library itself, so it is there on every machine and no setlocale() of the host reaches it.
locale_t unicodeLocale() {
  static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return locale;
}

char32_t lowercased(char32_t character) {
  if (character < 0x80) return character >= 'A' && character <= 'Z' ? character + ('a' - 'A') : character;
  if (unicodeLocale() == nullptr) return character;
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(character), unicodeLocale()));
}

}  // namespace

UTF8Sequence firstUTF8Sequence(std::string_view text) {
  const auto byteAt = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
  const std::uint8_t lead = byteAt(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4) return {std::nullopt, 1};
  char32_t character = lead & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const SecondByte allowed = i == 1 ? secondByteAfter(lead) : SecondByte{};
    if (i == text.size() || byteAt(i) < allowed.smallest || byteAt(i) > allowed.largest) return {std::nullopt, i};
    character = (character << 6) | (byteAt(i) & 0x3F);
  }
  return {character, length};
}

void appendUTF8(std::string& out, char32_t character) {
  const auto put = [&](char32_t byte) { out += static_cast<char>(byte); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

bool isValidUTF8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    // Nearly all text is ASCII.
    if (static_cast<std::uint8_t>(text[i]) < 0x80) {
      ++i;
      continue;
    }
    const UTF8Sequence sequence = firstUTF8Sequence(text.substr(i));
    if (!sequence.character) return false;
    i += sequence.length;
  }
  return true;
}

std::string repairedUTF8(std::string_view text) {
  std::string repaired;
  repaired.reserve(text.size());
  while (!text.empty()) {
    const UTF8Sequence sequence = firstUTF8Sequence(text);
    repaired += sequence.character ? text.substr(0, sequence.length) : kReplacement;
    text.remove_prefix(sequence.length);
  }
  return repaired;
}

std::string printable(std::string_view text, std::size_t longest) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (result.size() >= longest && !continuesCharacter(text[i])) {
      result += "...";
      break;
    }
    if (isControl(text, i)) {
      result += '?';
      if (static_cast<unsigned char>(text[i]) == 0xc2) ++i;
    } else {
      result += text[i];
    }
  }
  return repairedUTF8(result);
}

std::string lowercased(std::string_view text) {
  std::string lower;
  lower.reserve(text.size());
  while (!text.empty()) {
    const UTF8Sequence sequence = firstUTF8Sequence(text);
    if (sequence.character == kCapitalIWithDot)
      lower += "i\u0307";
    else if (sequence.character)
      appendUTF8(lower, lowercased(*sequence.character));
    else
      lower += text.substr(0, sequence.length);
    text.remove_prefix(sequence.length);
  }
  return lower;
}

}  // namespace quellaro
