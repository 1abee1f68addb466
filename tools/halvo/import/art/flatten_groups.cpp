#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "import/art/passes.h"
#include "import/art/region.h"
#include "import/art/stroke_outline.h"

namespace halvo::art {

namespace {

// Of a group whose members are cut out of one another; more take too long, and no two of them show for themselves.
constexpr std::size_t kMostMembers = 1500;

// A member of a group, with what lies above it in the group.
struct Member {
  Shape shape;
  // Of the even alphas above, all in all.
  double covered = 0;
  // Of the one gradient above that lets something through.
  std::optional<Gradient> veil;
};

// The alpha that a paint has everywhere, if it has.
std::optional<double> evenAlpha(const Paint& paint) {
  if (const auto* colour = std::get_if<Colour>(&paint)) return colour->alpha;
  const auto* gradient = std::get_if<Gradient>(&paint);
  if (!gradient || gradient->spread == Spread::None) return std::nullopt;
  const auto& stops = gradient->stops;
  const double alpha = stops.front().colour.alpha;
  const bool isEven = std::all_of(stops.begin(), stops.end(), [&](const GradientStop& stop) {
    return std::fabs(stop.colour.alpha - alpha) < 0.002;
  });
  return isEven ? std::optional(alpha) : std::nullopt;
}

// What is left of a paint's strength, when the group is laid down member by member, in a group of that opacity under
// others of that alpha: what shows of it in the group, over what the others will leave of what is below.
double strength(double opacity, double covered) {
  return covered >= 0.999 ? 0 : opacity * (1 - covered) / (1 - opacity * covered);
}

void fade(Paint& paint, double by) {
  if (auto* colour = std::get_if<Colour>(&paint)) colour->alpha *= by;
  if (auto* gradient = std::get_if<Gradient>(&paint))
    for (GradientStop& stop : gradient->stops) stop.colour.alpha *= by;
}

// A colour under a gradient is a gradient itself.
Gradient under(const Colour& colour, double opacity, double covered, const Gradient& veil) {
  constexpr int kPlaces = 8;
  Gradient result = veil;
  result.stops.clear();
  const auto add = [&](double offset, double alpha) {
    Colour faded = colour;
    faded.alpha *= strength(opacity, 1 - (1 - covered) * (1 - alpha));
    result.stops.push_back({offset, faded});
  };
  for (std::size_t i = 0; i + 1 < veil.stops.size(); ++i)
    for (int k = 0; k <= kPlaces; ++k) {
      const GradientStop& a = veil.stops[i];
      const GradientStop& b = veil.stops[i + 1];
      const double s = static_cast<double>(k) / kPlaces;
      add(a.offset + (b.offset - a.offset) * s, a.colour.alpha + (b.colour.alpha - a.colour.alpha) * s);
    }
  if (result.stops.empty()) add(0, veil.stops.front().colour.alpha);
  return result;
}

double meanAlpha(const Gradient& gradient) {
  double sum = 0;
  for (const GradientStop& stop : gradient.stops) sum += stop.colour.alpha;
  return sum / static_cast<double>(gradient.stops.size());
}

void makeFill(Shape& shape, const PassContext& context) {
  if (!shape.stroke) return;
  shape.outline = strokeOutline(shape.outline, *shape.stroke, context.frame);
  shape.stroke.reset();
  shape.windsOneWay = true;
}

bool mayOverlap(const Shape& a, const Shape& b) { return !isEmpty(commonBox(boundsOf(a), boundsOf(b))); }

void cover(Member& member, const Paint& above, const PassContext& context) {
  const auto even = evenAlpha(above);
  const auto* gradient = std::get_if<Gradient>(&above);
  if (!even && gradient && !member.veil && std::holds_alternative<Colour>(member.shape.paint)) {
    member.veil = *gradient;
    return;
  }
  if (!even) context.tell(ArtLoss::Approximated, "opacity", "gradients through one another in a group, by their mean");
  member.covered = 1 - (1 - member.covered) * (1 - (even ? *even : gradient ? meanAlpha(*gradient) : 1));
}

// Puts a member on others: what lies below it is parted from what does not.
void addOnTop(std::vector<Member>& members, Shape top, const PassContext& context) {
  std::vector<Member> result;
  for (Member& lower : members) {
    if (!mayOverlap(lower.shape, top)) {
      result.push_back(std::move(lower));
      continue;
    }
    makeFill(lower.shape, context);
    makeFill(top, context);
    Member below = lower;
    below.shape.outline = combine(Combination::Intersection, {lower.shape.outline}, {top.outline}, context.frame);
    if (below.shape.outline.empty()) {
      result.push_back(std::move(lower));
      continue;
    }
    below.shape.windsOneWay = lower.shape.windsOneWay = true;
    lower.shape.outline = combine(Combination::Difference, {lower.shape.outline}, {top.outline}, context.frame);
    if (!lower.shape.outline.empty()) result.push_back(std::move(lower));
    cover(below, top.paint, context);
    if (below.covered < 0.999) result.push_back(std::move(below));
  }
  result.push_back({std::move(top), 0, std::nullopt});
  members = std::move(result);
}

Shape faded(Member member, double opacity) {
  if (const auto* colour = std::get_if<Colour>(&member.shape.paint); colour && member.veil)
    member.shape.paint = under(*colour, opacity, member.covered, *member.veil);
  else
    fade(member.shape.paint, strength(opacity, member.covered));
  return std::move(member.shape);
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
      std::vector<Member> parted;
      for (Shape& member : members) addOnTop(parted, std::move(member), context);
      for (Member& member : parted) result.push_back(faded(std::move(member), group.opacity));
      continue;
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
