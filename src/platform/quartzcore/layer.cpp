#include "platform/quartzcore/layer.h"

#include <iterator>
#include <utility>

namespace quellaro {

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
