#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/coregraphics/coder.h"
#include "platform/coregraphics/color.h"
#include "platform/coregraphics/geometry.h"
#include "platform/quartzcore/transform3d.h"

namespace quellaro {

class CAShapeLayer;

// A node of the picture. Its bounds are in its own coordinates; its position is where the centre of its bounds lies in
// its parent; its transform acts about that centre. A layer with empty bounds at position (0, 0) therefore draws in its
// parent's coordinates. Main thread only, once it is part of a tree that is shown.
class CALayer {
 public:
  CALayer() = default;
  // initWithCoder: placed as the archive's frame says, if it holds one.
  explicit CALayer(const NSCoder& coder);
  CALayer& operator=(const CALayer&) = delete;
  // Trees may be a million layers deep, so destruction does not recurse.
  virtual ~CALayer();

  // This layer as one that draws an outline; null for every other.
  virtual const CAShapeLayer* asShapeLayer() const { return nullptr; }

  virtual CGRect bounds() const { return bounds_; }
  virtual void setBounds(CGRect bounds) { bounds_ = bounds; }
  CGPoint position() const { return position_; }
  void setPosition(CGPoint position) { position_ = position; }
  // Absent means the identity; a dump tells the two apart.
  const std::optional<CATransform3D>& transform() const { return transform_; }
  void setTransform(const CATransform3D& transform) { transform_ = transform; }
  const std::optional<CGColor>& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(std::optional<CGColor> color) { backgroundColor_ = color; }

  // Drawn in order, each above the one before it, and all above the layer's own content.
  const std::vector<std::shared_ptr<CALayer>>& sublayers() const { return sublayers_; }
  void addSublayer(std::shared_ptr<CALayer> layer) { sublayers_.push_back(std::move(layer)); }
  void setSublayers(std::vector<std::shared_ptr<CALayer>> layers) { sublayers_ = std::move(layers); }

 protected:
  // initWithLayer: like the other layer, without its sublayers.
  CALayer(const CALayer& layer);

 private:
  CGRect bounds_;
  CGPoint position_;
  std::optional<CATransform3D> transform_;
  std::optional<CGColor> backgroundColor_;
  std::vector<std::shared_ptr<CALayer>> sublayers_;
};

}  // namespace quellaro
