#include <cmath>

#include "import/art/every_shape.h"
#include "import/art/passes.h"
#include "import/art/stroke_outline.h"

namespace halvo::art {

namespace {

// More pictures than these in one shape are too small to be seen apart.
constexpr double kMostTiles = 4000;

struct Tiles {
  int firstX = 0, lastX = 0, firstY = 0, lastY = 0;
};

std::optional<Tiles> tilesOf(const Pattern& pattern, const Box& shown) {
  if (!pattern.repeats) return Tiles{};
  const Box box = quellaro::map(pattern.toPattern, shown);
  const double firstX = std::floor(box.minX / pattern.width);
  const double lastX = std::floor(box.maxX / pattern.width);
  const double firstY = std::floor(box.minY / pattern.height);
  const double lastY = std::floor(box.maxY / pattern.height);
  if (!((lastX - firstX + 1) * (lastY - firstY + 1) <= kMostTiles)) return std::nullopt;
  return Tiles{static_cast<int>(firstX), static_cast<int>(lastX), static_cast<int>(firstY), static_cast<int>(lastY)};
}

// The picture's own content, which its edges cut off.
std::shared_ptr<Group> tile(const Pattern& pattern, int x, int y, const Matrix& toFrame) {
  const Matrix matrix = quellaro::concat(Matrix{1, 0, 0, 1, x * pattern.width, y * pattern.height}, toFrame);
  const auto edges = std::make_shared<const Clip>(
      Clip{mapped(rectangle({0, 0, pattern.width, pattern.height}), matrix), Rule::NonZero});
  auto group = std::make_shared<Group>();
  for (const Item& item : pattern.picture->items) {
    Item copy = mapped(item, matrix);
    const Box box = boundsOf(item);
    if (!Box{0, 0, pattern.width, pattern.height}.contains(box)) copy.clips.push_back(edges);
    group->members.items.push_back(std::move(copy));
  }
  return group;
}

}  // namespace

DisplayList unrollPatterns(DisplayList list, const PassContext& context) {
  return rewriteShapes(std::move(list), [&](Item&& item, std::vector<Item>& result) {
    Shape& shape = std::get<Shape>(item.what);
    const auto* pattern = std::get_if<Pattern>(&shape.paint);
    if (!pattern) return result.push_back(std::move(item));
    const Box shown = commonBox(boundsOf(shape), context.frame.viewport);
    if (isEmpty(shown) || pattern->picture->items.empty() || !(pattern->width > 0 && pattern->height > 0)) return;
    const auto tiles = tilesOf(*pattern, shown);
    if (!tiles || !(std::fabs(determinant(pattern->toPattern)) > 0))
      return context.tell(ArtLoss::LeftOut, "pattern", "a pattern of too many pictures is left out");
    const Matrix toFrame = inverse(pattern->toPattern);
    auto group = std::make_shared<Group>();
    for (int y = tiles->firstY; y <= tiles->lastY; ++y)
      for (int x = tiles->firstX; x <= tiles->lastX; ++x)
        group->members.items.push_back({tile(*pattern, x, y, toFrame), {}});
    Clip clip{shape.outline, shape.rule};
    if (shape.stroke) clip = {strokeOutline(shape.outline, *shape.stroke, context.frame), Rule::NonZero};
    item.clips.push_back(std::make_shared<const Clip>(std::move(clip)));
    // Pictures in pictures.
    result.push_back(
        {std::make_shared<Group>(Group{unrollPatterns(std::move(group->members), context), 1}), std::move(item.clips)});
  });
}

}  // namespace halvo::art
