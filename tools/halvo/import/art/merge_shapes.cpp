#include <algorithm>
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

// Which edges an outline has, each by its ends, whichever comes first, in twentieths of a unit.
using Edges = std::set<std::array<long, 4>>;

void addEdges(const FlatShape& shape, Edges& edges) {
  for (const Contour& contour : shape.outline) {
    const auto add = [&](const Point& from, const Point& to) {
      std::array<long, 2> a{std::lround(from.x * 20), std::lround(from.y * 20)};
      std::array<long, 2> b{std::lround(to.x * 20), std::lround(to.y * 20)};
      if (b < a) std::swap(a, b);
      edges.insert({a[0], a[1], b[0], b[1]});
    };
    Point from = contour.start;
    for (const Segment& segment : contour.segments) add(std::exchange(from, segment.end), segment.end);
    const bool isClosed = contour.isClosed || !shape.strokeWidth;
    if (isClosed && (from.x != contour.start.x || from.y != contour.start.y)) add(from, contour.start);
  }
}

bool haveCommon(const Edges& a, const Edges& b) {
  return std::any_of(b.begin(), b.end(), [&](const auto& edge) { return a.contains(edge); });
}

// One outline of both looks like both over each other: where they overlap, nothing may cancel out or show twice.
bool mayJoin(const FlatShape& a, const FlatShape& b) {
  if (!samePaint(a, b)) return false;
  if (a.colour.alpha >= 1 && (a.strokeWidth || (a.windsOneWay && b.windsOneWay))) return true;
  const double reach = a.strokeWidth ? *a.strokeWidth * 5 : 0;
  const Box common = commonBox(boundsOf(a).grown(reach), boundsOf(b).grown(reach));
  return !(common.minX <= common.maxX && common.minY <= common.maxY);
}

}  // namespace

std::vector<FlatShape> mergeShapes(std::vector<FlatShape> shapes, const PassContext& context) {
  std::vector<FlatShape> result;
  Edges edges;  // of the last one
  for (FlatShape& shape : shapes) {
    if (!isSeen(shape, context.frame.viewport)) continue;
    Edges own;
    addEdges(shape, own);
    // An edge that is drawn twice is darker than one that is drawn once, and stays so.
    if (!result.empty() && mayJoin(result.back(), shape) && !haveCommon(edges, own)) {
      FlatShape& last = result.back();
      last.windsOneWay = last.windsOneWay && shape.windsOneWay;
      append(last.outline, shape.outline);
      append(last.asFill, shape.asFill);
      append(last.dots, shape.dots);
      edges.merge(own);
    } else {
      result.push_back(std::move(shape));
      edges = std::move(own);
    }
  }
  return result;
}

}  // namespace halvo::art
