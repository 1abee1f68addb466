// The words of a drawing script that make surfaces and sources of colour, and place them.
#include <memory>
#include <utility>

#include "import/art/script_interpreter.h"

namespace halvo::art {

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

}  // namespace halvo::art
