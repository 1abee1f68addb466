#include "platform/quartzcore/raster/outline.h"

#include <algorithm>

#include "platform/quartzcore/raster/curve.h"

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

bool isStar(const CGPath& path, const Box& box) {
  const auto verbs = path.verbs();
  const bool oneContour = std::none_of(verbs.begin() + 1, verbs.end(), [](PathVerb v) { return v == PathVerb::Move; });
  const std::size_t closes = static_cast<std::size_t>(std::count(verbs.begin(), verbs.end(), PathVerb::Close));
  if (!oneContour || closes > 1 || (closes == 1 && verbs.back() != PathVerb::Close)) return false;
  const PathPoints points = path.points();
  const CGPoint middle = midpoint({box.minX, box.minY}, {box.maxX, box.maxY});
  const auto seen = [&](std::size_t i) { return CGPoint{points[i].x - middle.x, points[i].y - middle.y}; };
  CGPoint before = seen(points.size() - 1);
  bool left = false;
  bool right = false;
  int rounds = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const CGPoint now = seen(i);
    const double cross = before.x * now.y - before.y * now.x;
    const bool isStraight = cross == 0 && before.x * now.x + before.y * now.y <= 0;
    left = left || cross < 0 || isStraight;
    right = right || cross > 0 || isStraight;
    if (left && right) return false;
    rounds += before.y < 0 && now.y >= 0 ? 1 : 0;
    before = now;
  }
  return rounds == 1;
}

}  // namespace quellaro
