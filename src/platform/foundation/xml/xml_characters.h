#pragma once

#include <cstddef>

// What XML 1.0 (fifth edition) says about characters, over text that is meant to be UTF-8.
namespace quellaro::xml {

constexpr bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The character that starts at `p`, and how many bytes it takes; size 0 when the bytes are not one character in UTF-8
// or the character may not stand in XML (most control characters, surrogates, U+FFFE and U+FFFF).
struct Character {
  char32_t code = 0;
  std::size_t size = 0;
};
Character characterAt(const char* p, const char* end);
bool isCharacter(char32_t code);

// Where the name that starts at `p` ends; `p` when there is none.
const char* skipName(const char* p, const char* end);
const char* skipSpaces(const char* p, const char* end);
// Passes over characters that mean nothing wherever they stand. Stops at the latest at '<', '&', `stop`, a control
// character or one outside ASCII; these may be anything.
const char* skipPlain(const char* p, const char* end, char stop);

}  // namespace quellaro::xml
