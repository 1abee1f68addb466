#pragma once

#include <array>
#include <string>

#include "platform/foundation/numbers.h"
#include "platform/quartzcore/shape_layer.h"

// Outlines and layer trees as people read them.
namespace quellaro {

inline std::string numberText(double value) {
  std::string text;
  appendShortest(text, value);
  return text;
}

// "M0,0 C1,2 3,4 5,6 Z"
inline std::string outlineText(const CGPath& path) {
  std::string text;
  const PathPoints points = path.points();
  std::size_t next = 0;
  for (const PathVerb verb : path.verbs()) {
    if (!text.empty()) text += ' ';
    text += "MLQCZ"[static_cast<std::size_t>(verb)];
    for (int i = 0; i < pointCount(verb); ++i, ++next)
      text += (i > 0 ? " " : "") + numberText(points[next].x) + "," + numberText(points[next].y);
  }
  return text;
}

// "#ff000080", exact because all colours come from bytes.
inline std::string colorText(const CGColor& color) {
  std::string text = "#";
  for (const double component : {color.red, color.green, color.blue, color.alpha}) {
    const auto byte = static_cast<unsigned>(component * 255.0 + 0.5);
    text += "0123456789abcdef"[byte >> 4 & 15U];
    text += "0123456789abcdef"[byte & 15U];
  }
  return text;
}

inline std::string transformText(const CATransform3D& t) {
  std::string text;
  for (const double number : {t.m11, t.m12, t.m21, t.m22, t.m41, t.m42}) text += " " + numberText(number);
  return text.substr(1);
}

// One line for each layer, its sublayers indented below it.
inline std::string layerText(const CALayer& layer, std::size_t depth = 0) {
  std::string text(2 * depth, ' ');
  if (const auto* shape = dynamic_cast<const CAShapeLayer*>(&layer)) {
    text += "shape";
    if (const auto& color = shape->fillColor()) text += " fill " + colorText(*color);
    if (const auto& color = shape->strokeColor()) text += " stroke " + colorText(*color);
    text += " width " + numberText(shape->lineWidth());
    if (const auto& transform = shape->transform()) text += " transform [" + transformText(*transform) + "]";
    const std::string outline = outlineText(*shape->path());
    if (!outline.empty()) text += " path " + outline;
  } else {
    text += "layer " + numberText(layer.bounds().size.width) + " x " + numberText(layer.bounds().size.height);
  }
  text += '\n';
  for (const auto& sublayer : layer.sublayers()) text += layerText(*sublayer, depth + 1);
  return text;
}

}  // namespace quellaro
