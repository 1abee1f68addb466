#include "import/art/script_tokens.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace halvo::art {

namespace {

constexpr std::string_view kSpace = " \t\r\n\f";
constexpr std::string_view kDelimiters = " \t\r\n\f[]{}<>()/%";

std::string_view take(std::string_view& from, std::size_t count) {
  const std::string_view taken = from.substr(0, count);
  from.remove_prefix(taken.size());
  return taken;
}

std::size_t through(std::string_view text, std::string_view end) {
  const std::size_t at = text.find(end);
  return at == std::string_view::npos ? text.size() : at + end.size();
}

// Of a text in parentheses, which may hold others.
std::size_t textLength(std::string_view text) {
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\')
      ++i;
    else if (text[i] == '(')
      ++depth;
    else if (text[i] == ')' && --depth == 0)
      return i + 1;
  }
  return text.size();
}

void skipSpace(std::string_view& script) {
  while (!script.empty()) {
    script.remove_prefix(std::min(script.find_first_not_of(kSpace), script.size()));
    if (!script.starts_with('%')) return;
    take(script, through(script, "\n"));
  }
}

Token plain(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end == text.data() + text.size()) return {TokenKind::Number, number, text};
  return {TokenKind::Word, 0, text};
}

}  // namespace

std::optional<Token> nextToken(std::string_view& script) {
  skipSpace(script);
  if (script.empty()) return std::nullopt;
  if (script.starts_with("<<")) return Token{TokenKind::DictionaryOpen, 0, take(script, 2)};
  if (script.starts_with(">>")) return Token{TokenKind::DictionaryClose, 0, take(script, 2)};
  if (script.starts_with("<|") || script.starts_with("<~"))
    return Token{TokenKind::Data, 0, take(script, through(script, "~>"))};
  if (script.starts_with("<")) return Token{TokenKind::Data, 0, take(script, through(script, ">"))};
  if (script.starts_with("(")) return Token{TokenKind::Data, 0, take(script, textLength(script))};
  if (script.starts_with("[")) return Token{TokenKind::Open, 0, take(script, 1)};
  if (script.starts_with("]")) return Token{TokenKind::Close, 0, take(script, 1)};
  if (script.starts_with("/")) {
    script.remove_prefix(std::min(script.find_first_not_of('/'), script.size()));
    return Token{TokenKind::Name, 0, take(script, std::min(script.find_first_of(kDelimiters), script.size()))};
  }
  const std::size_t end = std::min(script.find_first_of(kDelimiters), script.size());
  return plain(take(script, std::max<std::size_t>(end, 1)));
}

}  // namespace halvo::art
