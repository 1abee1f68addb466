#pragma once

#include "platform/quartzcore/layer.h"

namespace quellaro {

// The layer behind an animation view: keeps the frame it shows stretched over its whole area, whatever size it is
// given.
class QLHalvoLayer : public CALayer {
 public:
  QLHalvoLayer() = default;
  // initWithLayer:
  explicit QLHalvoLayer(const CALayer& layer) : CALayer(layer) {}
  // initWithCoder:
  explicit QLHalvoLayer(const NSCoder& coder) : CALayer(coder) {}
  QLHalvoLayer(const QLHalvoLayer&) = delete;
  QLHalvoLayer& operator=(const QLHalvoLayer&) = delete;
  ~QLHalvoLayer() override = default;

  CGRect bounds() const override { return CALayer::bounds(); }
  void setBounds(CGRect bounds) override;

 private:
  void fitSublayers();
};

}  // namespace quellaro
