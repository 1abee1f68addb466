#include <array>
#include <cmath>
#include <iterator>
#include <set>
#include <utility>

#include "import/art/passes.h"

namespace halvo::art {

namespace {

template <class Element>
void append(std::vector<Element>& to, std::vector<Element>& from) {
  to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

bool isSeen(const FlatShape& shape, const Box& viewport) {
  if ((shape.outline.empty() && shape.asFill.empty()) || std::lround(shape.colour.alpha * 255) == 0) return false;
  const Box box = boundsOf(shape).grown(shape.strokeWidth ? *shape.strokeWidth * 5 : 0);
  return !isEmpty(commonBox(box, viewport));
}

bool samePaint(const FlatShape& a, const FlatShape& b) {
  return a.colour == b.colour && a.strokeWidth == b.strokeWidth && a.asFill.empty() == b.asFill.empty();
}

// In thousandths of a unit.
using Place = std::array<long, 4>;
Place placeOf(const FlatShape& shape) {
  const Box box = boundsOf(shape);
  return {std::lround(box.minX * 1000), std::lround(box.minY * 1000), std::lround(box.maxX * 1000),
          std::lround(box.maxY * 1000)};
}

// One outline of both looks like both over each other: where they overlap, nothing may cancel out or show twice. What
// is drawn twice at the same place stays so, as its edges are darker than when it is drawn once.
bool mayJoin(const FlatShape& a, const std::set<Place>& placesInA, const FlatShape& b) {
  if (!samePaint(a, b) || placesInA.contains(placeOf(b))) return false;
  if (a.colour.alpha >= 1 && (a.strokeWidth || (a.windsOneWay && b.windsOneWay))) return true;
  const double reach = a.strokeWidth ? *a.strokeWidth * 5 : 0;
  const Box common = commonBox(boundsOf(a).grown(reach), boundsOf(b).grown(reach));
  return !(common.minX <= common.maxX && common.minY <= common.maxY);
}

}  // namespace

std::vector<FlatShape> mergeShapes(std::vector<FlatShape> shapes, const PassContext& context) {
  std::vector<FlatShape> result;
  std::set<Place> places;  // of the last one's parts
  for (FlatShape& shape : shapes) {
    if (!isSeen(shape, context.frame.viewport)) continue;
    const Place place = placeOf(shape);
    if (!result.empty() && mayJoin(result.back(), places, shape)) {
      FlatShape& last = result.back();
      last.windsOneWay = last.windsOneWay && shape.windsOneWay;
      append(last.outline, shape.outline);
      append(last.asFill, shape.asFill);
      append(last.dots, shape.dots);
    } else {
      result.push_back(std::move(shape));
      places.clear();
    }
    places.insert(place);
  }
  return result;
}

}  // namespace halvo::art
