#pragma once

#include <memory>
#include <optional>

#include "platform/coregraphics/path.h"
#include "platform/quartzcore/layer.h"

namespace quellaro {

// A layer that draws one outline: filled by the non-zero rule, then stroked with butt caps, miter joins and miter
// limit 10. The path is shared with whoever made it and never changed while a layer holds it. An absent colour draws
// nothing.
class CAShapeLayer : public CALayer {
 public:
  const CAShapeLayer* asShapeLayer() const override { return this; }

  const std::shared_ptr<const CGPath>& path() const { return path_; }
  void setPath(std::shared_ptr<const CGPath> path) { path_ = std::move(path); }
  const std::optional<CGColor>& strokeColor() const { return strokeColor_; }
  void setStrokeColor(std::optional<CGColor> color) { strokeColor_ = color; }
  double lineWidth() const { return lineWidth_; }
  void setLineWidth(double width) { lineWidth_ = width; }
  const std::optional<CGColor>& fillColor() const { return fillColor_; }
  void setFillColor(std::optional<CGColor> color) { fillColor_ = color; }

 private:
  std::shared_ptr<const CGPath> path_;
  std::optional<CGColor> strokeColor_;
  double lineWidth_ = 1;
  std::optional<CGColor> fillColor_;
};

}  // namespace quellaro
