#include "animation/halvo_layer.h"

namespace quellaro {

void QLHalvoLayer::setBounds(CGRect bounds) {
  CALayer::setBounds(bounds);
  fitSublayers();
}

void QLHalvoLayer::fitSublayers() {
  const CGSize room = bounds().size;
  for (const auto& sublayer : sublayers()) {
    const CGSize size = sublayer->bounds().size;
    sublayer->setPosition({room.width * 0.5, room.height * 0.5});
    sublayer->setTransform(
        CATransform3DScale(CATransform3DIdentity, room.width / size.width, room.height / size.height, 1));
  }
}

}  // namespace quellaro
