#include "import/art/script_reader.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "import/art/script_objects.h"
#include "import/art/script_painting.h"
#include "import/art/script_tokens.h"

namespace halvo::art {

namespace {

// Reads the script as its own interpreter would: words take their operands off a stack and leave their results there,
// and the context on top is what drawing words work on. A word it does not know stops it, for what that would have done
// to the stack is not known either.
class ScriptReader {
 public:
  ScriptReader(const Matrix& toFrame, std::vector<ArtNote>& notes) : painting_{toFrame, notes} {}

  std::variant<DisplayList, ArtError> read(std::string_view script) {
    while (const std::optional<Token> token = nextToken(script))
      if (!take(*token)) return ArtError{std::nullopt, "the drawing library says '" + std::string(token->text) + "'"};
    if (!picture_) return DisplayList{};
    return std::move(picture_->list);
  }

 private:
  using Surface = std::shared_ptr<ScriptSurface>;
  using Pattern = std::shared_ptr<ScriptPattern>;
  using Context = std::shared_ptr<ScriptContext>;
  using Operation = bool (ScriptReader::*)();

  bool take(const Token& token);
  bool word(std::string_view text);
  static const std::map<std::string_view, Operation>& operations();

  // The topmost value, where it is of that kind.
  template <class Value>
  Value* top() {
    return stack_.empty() ? nullptr : std::get_if<Value>(&stack_.back());
  }
  template <class Value>
  bool pop(Value& value) {
    Value* const found = top<Value>();
    if (!found) return false;
    value = std::move(*found);
    stack_.pop_back();
    return true;
  }
  // The topmost numbers, in the order they were pushed.
  template <std::size_t kCount>
  bool pop(double (&numbers)[kCount]) {
    for (std::size_t i = kCount; i-- > 0;)
      if (!pop(numbers[i])) return false;
    return true;
  }
  ScriptContext* context() {
    const Context* const found = top<Context>();
    return found ? found->get() : nullptr;
  }
  Point mapped(double x, double y) { return context()->matrix.map({x, y}); }

  bool closeArray();
  bool closeDictionary();
  // Of the stack and the names.
  bool dropTop();
  bool duplicate();
  bool exchange();
  bool index();
  bool roll();
  bool define();
  bool undefine();
  // Of surfaces and patterns.
  bool makeSurface();
  bool makeImage();
  bool makeSimilar();
  bool makeContext();
  bool makePattern();
  bool makeColour(Colour colour);
  bool grey();
  bool alpha();
  bool greyAlpha();
  bool rgb();
  bool rgba();
  bool linear();
  bool radial();
  bool addStop();
  bool setExtend();
  bool ignoreOperand();
  bool identity();
  bool setMatrix();
  bool changeMatrix(const Matrix& change);
  bool translate();
  bool scale();
  // Of contexts.
  bool setSource();
  bool setRule();
  bool setWidth();
  bool setCap();
  bool setJoin();
  bool setMiterLimit();
  bool setDash();
  bool setOperator();
  bool newPath();
  bool move();
  bool line();
  bool curve();
  bool close();
  bool rectanglePath();
  template <void (ScriptPainting::*kDraw)(const ScriptContext&) const, bool kKeepsPath = true>
  bool draw();
  bool mask();
  template <bool kKeepsPath>
  bool clip();
  bool resetClip();

  ScriptPainting painting_;
  std::vector<ScriptValue> stack_;
  std::map<std::string_view, ScriptValue> names_;
  Surface picture_;
};

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

bool ScriptReader::dropTop() {
  if (stack_.empty()) return false;
  stack_.pop_back();
  return true;
}

bool ScriptReader::duplicate() {
  if (stack_.empty()) return false;
  ScriptValue copy = stack_.back();
  stack_.push_back(std::move(copy));
  return true;
}

bool ScriptReader::exchange() {
  if (stack_.size() < 2) return false;
  std::swap(stack_.back(), stack_[stack_.size() - 2]);
  return true;
}

bool ScriptReader::index() {
  double depth = 0;
  if (!pop(depth) || !(depth >= 0 && depth < static_cast<double>(stack_.size()))) return false;
  ScriptValue copy = stack_[stack_.size() - 1 - static_cast<std::size_t>(depth)];
  stack_.push_back(std::move(copy));
  return true;
}

bool ScriptReader::roll() {
  double numbers[2];
  if (!pop(numbers)) return false;
  const double count = numbers[0];
  if (!(count >= 1 && count <= static_cast<double>(stack_.size())) || std::fabs(numbers[1]) > count) return false;
  const auto begin = stack_.end() - static_cast<std::ptrdiff_t>(count);
  const auto by = static_cast<std::ptrdiff_t>(numbers[1]);
  std::rotate(begin, by >= 0 ? stack_.end() - by : begin - by, stack_.end());
  return true;
}

bool ScriptReader::define() {
  if (stack_.size() < 2) return false;
  ScriptValue value = std::move(stack_.back());
  stack_.pop_back();
  ScriptName name;
  if (!pop(name)) return false;
  names_.insert_or_assign(name.text, std::move(value));
  return true;
}

bool ScriptReader::undefine() {
  ScriptName name;
  if (!pop(name)) return false;
  names_.erase(name.text);
  return true;
}

bool ScriptReader::makeSurface() {
  ScriptDictionary size;
  if (!pop(size)) return false;
  auto surface = std::make_shared<ScriptSurface>(ScriptSurface{size["width"], size["height"], false, {}});
  if (!picture_) picture_ = surface;
  stack_.emplace_back(std::move(surface));
  return true;
}

bool ScriptReader::makeImage() {
  ScriptDictionary size;
  if (!pop(size)) return false;
  stack_.emplace_back(std::make_shared<ScriptSurface>(ScriptSurface{size["width"], size["height"], true, {}}));
  return true;
}

bool ScriptReader::makeSimilar() {
  ScriptName content;
  double size[2];
  if (!pop(content) || !pop(size) || !dropTop()) return false;
  stack_.emplace_back(std::make_shared<ScriptSurface>(ScriptSurface{size[0], size[1], false, {}}));
  return true;
}

bool ScriptReader::makeContext() {
  Surface surface;
  if (!pop(surface)) return false;
  auto context = std::make_shared<ScriptContext>();
  context->target = std::move(surface);
  stack_.emplace_back(std::move(context));
  return true;
}

bool ScriptReader::makePattern() {
  Surface surface;
  if (!pop(surface)) return false;
  stack_.emplace_back(
      std::make_shared<ScriptPattern>(ScriptPattern{SurfacePattern{std::move(surface)}, {}, Spread::None}));
  return true;
}

bool ScriptReader::makeColour(Colour colour) {
  stack_.emplace_back(std::make_shared<ScriptPattern>(ScriptPattern{colour, {}, Spread::None}));
  return true;
}

bool ScriptReader::grey() {
  double v[1];
  return pop(v) && makeColour({v[0], v[0], v[0], 1});
}
bool ScriptReader::alpha() {
  double v[1];
  return pop(v) && makeColour({0, 0, 0, v[0]});
}
bool ScriptReader::greyAlpha() {
  double v[2];
  return pop(v) && makeColour({v[0], v[0], v[0], v[1]});
}
bool ScriptReader::rgb() {
  double v[3];
  return pop(v) && makeColour({v[0], v[1], v[2], 1});
}
bool ScriptReader::rgba() {
  double v[4];
  return pop(v) && makeColour({v[0], v[1], v[2], v[3]});
}

bool ScriptReader::linear() {
  double v[4];
  if (!pop(v)) return false;
  Gradient gradient;
  gradient.from = {v[0], v[1]};
  gradient.to = {v[2], v[3]};
  stack_.emplace_back(std::make_shared<ScriptPattern>(ScriptPattern{std::move(gradient), {}, Spread::Pad}));
  return true;
}

bool ScriptReader::radial() {
  double v[6];
  if (!pop(v)) return false;
  Gradient gradient;
  gradient.isRadial = true;
  gradient.from = {v[0], v[1]};
  gradient.fromRadius = v[2];
  gradient.to = {v[3], v[4]};
  gradient.toRadius = v[5];
  stack_.emplace_back(std::make_shared<ScriptPattern>(ScriptPattern{std::move(gradient), {}, Spread::Pad}));
  return true;
}

bool ScriptReader::addStop() {
  double v[5];
  if (!pop(v) || !top<Pattern>()) return false;
  auto* gradient = std::get_if<Gradient>(&(*top<Pattern>())->source);
  if (!gradient) return false;
  gradient->stops.push_back({v[0], {v[1], v[2], v[3], v[4]}});
  return true;
}

bool ScriptReader::setExtend() {
  ScriptName name;
  if (!pop(name) || !top<Pattern>()) return false;
  Spread& spread = (*top<Pattern>())->spread;
  spread = name.text == "EXTEND_REPEAT"    ? Spread::Repeat
           : name.text == "EXTEND_REFLECT" ? Spread::Reflect
           : name.text == "EXTEND_PAD"     ? Spread::Pad
                                           : Spread::None;
  return true;
}

bool ScriptReader::ignoreOperand() { return dropTop(); }

bool ScriptReader::identity() {
  stack_.emplace_back(Matrix{});
  return true;
}

bool ScriptReader::setMatrix() {
  Matrix matrix;
  if (!pop(matrix)) {
    ScriptArray v;
    if (!pop(v) || v.size() != 6) return false;
    matrix = {v[0], v[1], v[2], v[3], v[4], v[5]};
  }
  if (Pattern* pattern = top<Pattern>())
    (*pattern)->matrix = matrix;
  else if (ScriptContext* to = context())
    to->matrix = matrix;
  else
    return false;
  return true;
}

bool ScriptReader::changeMatrix(const Matrix& change) {
  ScriptContext* const to = context();
  if (!to) return false;
  to->matrix = quellaro::concat(change, to->matrix);
  return true;
}

bool ScriptReader::translate() {
  double v[2];
  return pop(v) && changeMatrix({1, 0, 0, 1, v[0], v[1]});
}
bool ScriptReader::scale() {
  double v[2];
  return pop(v) && changeMatrix({v[0], 0, 0, v[1], 0, 0});
}

bool ScriptReader::setSource() {
  Pattern pattern;
  if (!pop(pattern) || !context()) return false;
  // A source stays where it was when the matrix changes later.
  if (const Matrix& matrix = context()->matrix; determinant(matrix) != 0)
    pattern->matrix = quellaro::concat(inverse(matrix), pattern->matrix);
  context()->source = std::move(pattern);
  return true;
}

bool ScriptReader::setRule() {
  ScriptName name;
  if (!pop(name) || !context()) return false;
  context()->rule = name.text == "EVEN_ODD" ? Rule::EvenOdd : Rule::NonZero;
  return true;
}

bool ScriptReader::setWidth() {
  double width = 0;
  if (!pop(width) || !context()) return false;
  context()->stroke.width = width;
  return true;
}

bool ScriptReader::setCap() {
  ScriptName name;
  if (!pop(name) || !context()) return false;
  context()->stroke.cap = name.text == "LINE_CAP_ROUND"    ? LineCap::Round
                          : name.text == "LINE_CAP_SQUARE" ? LineCap::Square
                                                           : LineCap::Butt;
  return true;
}

bool ScriptReader::setJoin() {
  ScriptName name;
  if (!pop(name) || !context()) return false;
  context()->stroke.join = name.text == "LINE_JOIN_ROUND"   ? LineJoin::Round
                           : name.text == "LINE_JOIN_BEVEL" ? LineJoin::Bevel
                                                            : LineJoin::Miter;
  return true;
}

bool ScriptReader::setMiterLimit() {
  double limit = 0;
  if (!pop(limit) || !context()) return false;
  context()->stroke.miterLimit = limit;
  return true;
}

bool ScriptReader::setDash() {
  double offset = 0;
  ScriptArray dashes;
  if (!pop(offset) || !pop(dashes) || !context()) return false;
  context()->stroke.dashes = std::move(dashes);
  context()->stroke.dashOffset = offset;
  return true;
}

bool ScriptReader::setOperator() {
  ScriptName name;
  if (!pop(name) || !context()) return false;
  context()->blends = name.text != "OVER";
  return true;
}

bool ScriptReader::newPath() {
  if (!context()) return false;
  context()->path.clear();
  return true;
}

bool ScriptReader::move() {
  double v[2];
  if (!pop(v) || !context()) return false;
  context()->path.push_back({mapped(v[0], v[1]), {}, false});
  return true;
}

bool ScriptReader::line() {
  double v[2];
  if (!pop(v) || !context() || context()->path.empty()) return false;
  context()->path.back().segments.push_back(lineTo(mapped(v[0], v[1])));
  return true;
}

bool ScriptReader::curve() {
  double v[6];
  if (!pop(v) || !context() || context()->path.empty()) return false;
  context()->path.back().segments.push_back(curveTo(mapped(v[0], v[1]), mapped(v[2], v[3]), mapped(v[4], v[5])));
  return true;
}

bool ScriptReader::close() {
  if (!context() || context()->path.empty()) return false;
  context()->path.back().isClosed = true;
  return true;
}

bool ScriptReader::rectanglePath() {
  double v[4];
  if (!pop(v) || !context()) return false;
  for (Contour& contour : art::mapped(rectangle({v[0], v[1], v[0] + v[2], v[1] + v[3]}), context()->matrix))
    context()->path.push_back(std::move(contour));
  return true;
}

template <void (ScriptPainting::*kDraw)(const ScriptContext&) const, bool kKeepsPath>
bool ScriptReader::draw() {
  if (!context()) return false;
  (painting_.*kDraw)(*context());
  if constexpr (!kKeepsPath) context()->path.clear();
  return true;
}

bool ScriptReader::mask() {
  Pattern through;
  if (!pop(through) || !context()) return false;
  painting_.mask(*context(), *through);
  return true;
}

template <bool kKeepsPath>
bool ScriptReader::clip() {
  if (!context()) return false;
  painting_.clip(*context());
  if constexpr (!kKeepsPath) context()->path.clear();
  return true;
}

bool ScriptReader::resetClip() {
  if (!context()) return false;
  context()->clips.clear();
  return true;
}

}  // namespace

std::variant<DisplayList, ArtError> readScript(std::string_view script, const Matrix& toFrame,
                                               std::vector<ArtNote>& notes) {
  return ScriptReader(toFrame, notes).read(script);
}

}  // namespace halvo::art
