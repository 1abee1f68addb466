#pragma once

#include <optional>
#include <string_view>

namespace halvo::art {

enum class TokenKind { Number, Word, Name, Open, Close, DictionaryOpen, DictionaryClose, Data };

struct Token {
  TokenKind kind = TokenKind::Word;
  double number = 0;
  // A word, or a name without its slashes.
  std::string_view text;
};

// Takes one token off the front of a drawing script; nothing at its end. What belongs to no token is passed over.
std::optional<Token> nextToken(std::string_view& script);

}  // namespace halvo::art
