// The words of a drawing script that set up a context, build its path and draw.
#include <utility>

#include "import/art/script_interpreter.h"

namespace halvo::art {

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

bool ScriptReader::mask() {
  Pattern through;
  if (!pop(through) || !context()) return false;
  painting_.mask(*context(), *through);
  return true;
}

bool ScriptReader::resetClip() {
  if (!context()) return false;
  context()->clips.clear();
  return true;
}

}  // namespace halvo::art
