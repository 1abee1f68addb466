#include "platform/quartzcore/raster/outline.h"

namespace quellaro {

std::optional<Box> pointBox(const CGPath& path) {
  const PathPoints points = path.points();
  if (points.empty()) return std::nullopt;
  Box box{kFarAway, kFarAway, -kFarAway, -kFarAway};
  double notANumber = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const CGPoint point = points[i];
    const CGPoint p = clampFar(point);
    // std::min and std::max lose a NaN; a sum keeps it.
    notANumber += (p.x - p.x) + (p.y - p.y) + 0 * (std::isnan(point.x) || std::isnan(point.y));
    box.minX = std::min(box.minX, p.x);
    box.minY = std::min(box.minY, p.y);
    box.maxX = std::max(box.maxX, p.x);
    box.maxY = std::max(box.maxY, p.y);
  }
  if (std::isnan(notANumber)) return std::nullopt;
  return box;
}

}  // namespace quellaro
