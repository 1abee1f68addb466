#include <algorithm>
#include <utility>

#include "import/art/passes.h"
#include "import/art/region.h"
#include "import/art/stroke_outline.h"

namespace halvo::art {

namespace {

// Of a group whose members are cut out of one another; more take too long, and no two of them show for themselves.
constexpr std::size_t kMostMembers = 1500;

bool isOpaque(const Paint& paint) {
  if (const auto* colour = std::get_if<Colour>(&paint)) return colour->alpha >= 0.999;
  const auto* gradient = std::get_if<Gradient>(&paint);
  return gradient && gradient->spread != Spread::None &&
         std::all_of(gradient->stops.begin(), gradient->stops.end(),
                     [](const GradientStop& stop) { return stop.colour.alpha >= 0.999; });
}

void fade(Paint& paint, double opacity) {
  if (auto* colour = std::get_if<Colour>(&paint)) colour->alpha *= opacity;
  if (auto* gradient = std::get_if<Gradient>(&paint))
    for (GradientStop& stop : gradient->stops) stop.colour.alpha *= opacity;
}

Colour over(const Colour& top, const Colour& below) {
  const double alpha = top.alpha + below.alpha * (1 - top.alpha);
  if (alpha == 0) return {0, 0, 0, 0};
  const auto mix = [&](double a, double b) { return (a * top.alpha + b * below.alpha * (1 - top.alpha)) / alpha; };
  return {mix(top.red, below.red), mix(top.green, below.green), mix(top.blue, below.blue), alpha};
}

void makeFill(Shape& shape, const PassContext& context) {
  if (!shape.stroke) return;
  shape.outline = strokeOutline(shape.outline, *shape.stroke, context.frame);
  shape.stroke.reset();
  shape.windsOneWay = true;
}

bool mayOverlap(const Shape& a, const Shape& b) { return !isEmpty(commonBox(boundsOf(a), boundsOf(b))); }

Shape fillOf(Outline outline, Paint paint) { return {std::move(outline), Rule::NonZero, std::nullopt, std::move(paint), true}; }

// Adds a member to others that do not overlap, so that none do afterwards.
void addApart(std::vector<Shape>& apart, Shape top, const PassContext& context) {
  std::vector<Shape> mixed;
  for (Shape& lower : apart) {
    if (!mayOverlap(lower, top)) continue;
    makeFill(lower, context);
    makeFill(top, context);
    const Outline common = combine(Combination::Intersection, {lower.outline}, {top.outline}, context.frame);
    if (common.empty()) continue;
    lower.outline = combine(Combination::Difference, {lower.outline}, {top.outline}, context.frame);
    lower.windsOneWay = true;
    if (isOpaque(top.paint)) continue;
    const auto* below = std::get_if<Colour>(&lower.paint);
    const auto* above = std::get_if<Colour>(&top.paint);
    if (below && above) {
      mixed.push_back(fillOf(common, over(*above, *below)));
      top.outline = combine(Combination::Difference, {top.outline}, {common}, context.frame);
      top.windsOneWay = true;
    } else {
      mixed.push_back(fillOf(common, lower.paint));
      context.tell(ArtLoss::Approximated, "opacity", "a gradient shows through another in a group of lower opacity");
    }
  }
  apart.push_back(std::move(top));
  for (Shape& shape : mixed) apart.push_back(std::move(shape));
  std::erase_if(apart, [](const Shape& shape) { return shape.outline.empty(); });
}

bool anyOverlap(const std::vector<Shape>& members) {
  for (std::size_t i = 0; i < members.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (mayOverlap(members[i], members[j])) return true;
  return false;
}

void flattenInto(const DisplayList& list, const PassContext& context, std::vector<Shape>& result) {
  for (const Item& item : list.items) {
    if (const auto* shape = std::get_if<Shape>(&item.what)) {
      result.push_back(*shape);
      continue;
    }
    const Group& group = *std::get<std::shared_ptr<Group>>(item.what);
    if (group.opacity > 0.9995) {
      flattenInto(group.members, context, result);
      continue;
    }
    std::vector<Shape> members;
    flattenInto(group.members, context, members);
    if (members.size() > kMostMembers) {
      context.tell(ArtLoss::Approximated, "opacity", "members of a large group show through one another");
    } else if (anyOverlap(members)) {
      std::vector<Shape> apart;
      for (Shape& member : members) addApart(apart, std::move(member), context);
      members = std::move(apart);
    }
    for (Shape& member : members) {
      fade(member.paint, group.opacity);
      result.push_back(std::move(member));
    }
  }
}

}  // namespace

std::vector<Shape> flattenGroups(const DisplayList& list, const PassContext& context) {
  std::vector<Shape> result;
  flattenInto(list, context, result);
  return result;
}

}  // namespace halvo::art
