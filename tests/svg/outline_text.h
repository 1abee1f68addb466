#pragma once

#include <string>

#include "platform/coregraphics/color.h"
#include "platform/coregraphics/path.h"
#include "platform/foundation/text/numbers.h"

namespace quellaro {

// "M0,0 C1,2 3,4 5,6 Z"
inline std::string outlineText(const CGPath& path) {
  std::string text;
  const PathPoints points = path.points();
  std::size_t next = 0;
  for (const PathVerb verb : path.verbs()) {
    if (!text.empty()) text += ' ';
    text += "MLQCZ"[static_cast<std::size_t>(verb)];
    for (int i = 0; i < pointCount(verb); ++i, ++next) {
      if (i > 0) text += ' ';
      appendShortest(text, points[next].x);
      text += ',';
      appendShortest(text, points[next].y);
    }
  }
  return text;
}

}  // namespace quellaro
