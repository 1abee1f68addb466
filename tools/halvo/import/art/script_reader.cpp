#include "import/art/script_reader.h"

#include <algorithm>
#include <optional>
#include <string>

#include "import/art/script_interpreter.h"

namespace halvo::art {

const std::map<std::string_view, ScriptReader::Operation>& ScriptReader::operations() {
  using R = ScriptReader;
  static const std::map<std::string_view, Operation> table = {
      {"pop", &R::dropTop},
      {"dup", &R::duplicate},
      {"exch", &R::exchange},
      {"index", &R::index},
      {"roll", &R::roll},
      {"def", &R::define},
      {"undef", &R::undefine},
      {"forget", &R::undefine},
      {"surface", &R::makeSurface},
      {"image", &R::makeImage},
      {"similar", &R::makeSimilar},
      {"context", &R::makeContext},
      {"pattern", &R::makePattern},
      {"g", &R::grey},
      {"a", &R::alpha},
      {"ga", &R::greyAlpha},
      {"rgb", &R::rgb},
      {"rgba", &R::rgba},
      {"linear", &R::linear},
      {"radial", &R::radial},
      {"add-color-stop", &R::addStop},
      {"set-extend", &R::setExtend},
      {"set-filter", &R::ignoreOperand},
      {"set-antialias", &R::ignoreOperand},
      {"set-tolerance", &R::ignoreOperand},
      {"identity", &R::identity},
      {"set-matrix", &R::setMatrix},
      {"translate", &R::translate},
      {"scale", &R::scale},
      {"set-source", &R::setSource},
      {"set-fill-rule", &R::setRule},
      {"set-line-width", &R::setWidth},
      {"set-line-cap", &R::setCap},
      {"set-line-join", &R::setJoin},
      {"set-miter-limit", &R::setMiterLimit},
      {"set-dash", &R::setDash},
      {"set-operator", &R::setOperator},
      {"n", &R::newPath},
      {"m", &R::move},
      {"l", &R::line},
      {"c", &R::curve},
      {"h", &R::close},
      {"rectangle", &R::rectanglePath},
      {"fill", &R::draw<&ScriptPainting::fill, false>},
      {"fill+", &R::draw<&ScriptPainting::fill>},
      {"stroke", &R::draw<&ScriptPainting::stroke, false>},
      {"stroke+", &R::draw<&ScriptPainting::stroke>},
      {"paint", &R::draw<&ScriptPainting::paint>},
      {"mask", &R::mask},
      {"clip", &R::clip<false>},
      {"clip+", &R::clip<true>},
      {"reset-clip", &R::resetClip},
  };
  return table;
}

std::variant<DisplayList, ArtError> ScriptReader::read(std::string_view script) {
  while (const std::optional<Token> token = nextToken(script))
    if (!take(*token)) return ArtError{std::nullopt, "the drawing library says '" + std::string(token->text) + "'"};
  if (!picture_) return DisplayList{};
  return std::move(picture_->list);
}

bool ScriptReader::take(const Token& token) {
  switch (token.kind) {
    case TokenKind::Number:
      stack_.emplace_back(token.number);
      return true;
    case TokenKind::Name:
      stack_.emplace_back(ScriptName{token.text});
      return true;
    case TokenKind::Open:
    case TokenKind::DictionaryOpen:
      stack_.emplace_back(ScriptMark{});
      return true;
    case TokenKind::Data:
      stack_.emplace_back(ScriptData{});
      return true;
    case TokenKind::Close:
      return closeArray();
    case TokenKind::DictionaryClose:
      return closeDictionary();
    case TokenKind::Word:
      return word(token.text);
  }
  return false;
}

bool ScriptReader::word(std::string_view text) {
  const auto& table = operations();
  if (const auto found = table.find(text); found != table.end()) return (this->*found->second)();
  const auto named = names_.find(text);
  if (named == names_.end()) return false;
  stack_.push_back(named->second);
  return true;
}

bool ScriptReader::closeArray() {
  ScriptArray numbers;
  double number = 0;
  while (pop(number)) numbers.push_back(number);
  std::reverse(numbers.begin(), numbers.end());
  if (!top<ScriptMark>()) return false;
  stack_.back() = std::move(numbers);
  return true;
}

bool ScriptReader::closeDictionary() {
  ScriptDictionary dictionary;
  while (!stack_.empty() && !top<ScriptMark>()) {
    const ScriptValue value = std::move(stack_.back());
    stack_.pop_back();
    ScriptName name;
    if (!pop(name)) return false;
    if (const double* number = std::get_if<double>(&value)) dictionary[name.text] = *number;
  }
  if (stack_.empty()) return false;
  stack_.back() = std::move(dictionary);
  return true;
}

std::variant<DisplayList, ArtError> readScript(std::string_view script, const Matrix& toFrame,
                                               std::vector<ArtNote>& notes) {
  return ScriptReader(toFrame, notes).read(script);
}

}  // namespace halvo::art
