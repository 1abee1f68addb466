#pragma once

#include <optional>

#include "check/frame_findings.h"
#include "platform/coregraphics/color.h"

namespace halvo {

// A fill or a stroke as a standard renderer has it.
struct StandardPaint {
  enum class Kind { None, Color, Unclear };  // Unclear: told of where it stands
  Kind kind = Kind::None;
  quellaro::CGColor color{};
  bool isDefault = true;
  bool isRead = true;  // false when it comes from where the engine takes no paint from

  bool isVisible() const { return kind == Kind::Color && color.alpha > 0; }
};

// What a standard renderer has inherited by the time it draws a shape.
struct StandardStyle {
  StandardPaint fill{StandardPaint::Kind::Color, {0, 0, 0, 1}};
  StandardPaint stroke;
  std::optional<double> strokeWidth = 1;  // absent when it is unclear
  double miterLimit = 4;
};

// The style of an element whose parent has that one. `isRead` tells whether the engine takes paint from it; what it
// reads otherwise than it looks is told.
StandardStyle inheritedStyle(const StandardStyle& parent, const CheckedElement& element, bool isRead,
                             FrameFindings& findings);

// Compares what the engine paints the shape with.
void checkPaint(const CheckedElement& element, const StandardStyle& style, FrameFindings& findings);

}  // namespace halvo
