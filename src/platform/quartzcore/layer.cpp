#include "platform/quartzcore/layer.h"

#include <iterator>
#include <utility>

namespace quellaro {

CALayer::CALayer(const NSCoder& coder) {
  const auto frame = coder.decodeCGRectForKey(kFrameKey);
  if (!frame) return;
  bounds_.size = frame->size;
  position_ = {frame->origin.x + frame->size.width * 0.5, frame->origin.y + frame->size.height * 0.5};
}

CALayer::CALayer(const CALayer& layer)
    : bounds_(layer.bounds_),
      position_(layer.position_),
      transform_(layer.transform_),
      backgroundColor_(layer.backgroundColor_) {}

CALayer::~CALayer() {
  std::vector<std::shared_ptr<CALayer>> doomed = std::move(sublayers_);
  while (!doomed.empty()) {
    const std::shared_ptr<CALayer> layer = std::move(doomed.back());
    doomed.pop_back();
    // A layer that somebody else still holds keeps its sublayers.
    if (layer.use_count() != 1) continue;
    doomed.insert(doomed.end(), std::make_move_iterator(layer->sublayers_.begin()),
                  std::make_move_iterator(layer->sublayers_.end()));
    layer->sublayers_.clear();
  }
}

}  // namespace quellaro
