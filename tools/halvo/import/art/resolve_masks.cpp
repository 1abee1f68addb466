#include <cmath>
#include <utility>

#include "import/art/passes.h"
#include "import/art/region.h"
#include "import/art/source_text.h"
#include "import/art/stroke_outline.h"

namespace halvo::art {

namespace {

// A gradient of a mask in more bands than these would cut what it masks into too many parts.
constexpr int kMostBands = 24;
constexpr std::size_t kMostParts = 4000;
constexpr double kLeastLight = 0.002;

bool isOpacity(double opacity, double marker) { return std::fabs(opacity - marker) < 1.5e-6; }

// Where the mask lets that share of the light through.
struct Light {
  Outline where;
  double share = 0;
};

double brightness(const Colour& colour) { return 0.2125 * colour.red + 0.7154 * colour.green + 0.0721 * colour.blue; }

// Bands and other shapes of the mask, the later over the earlier, as parts beside one another.
std::vector<Light> lightsOf(std::vector<FlatShape> shapes, bool byAlpha, const Frame& frame) {
  std::vector<Light> lights;
  for (FlatShape& shape : shapes) {
    const double own = byAlpha ? 1 : brightness(shape.colour);
    const double alpha = shape.colour.alpha;
    Outline rest = std::move(shape.outline);
    std::vector<Light> result;
    for (Light& light : lights) {
      Outline common = alpha < 0.999 ? combine(Combination::Intersection, {light.where}, {rest}, frame) : Outline{};
      light.where = combine(Combination::Difference, {light.where}, {rest}, frame);
      if (!common.empty()) result.push_back({std::move(common), alpha * own + (1 - alpha) * light.share});
      if (!light.where.empty()) result.push_back(std::move(light));
    }
    for (const Light& light : result)
      if (alpha < 0.999) rest = combine(Combination::Difference, {rest}, {light.where}, frame);
    result.push_back({std::move(rest), alpha * own});
    lights = std::move(result);
  }
  return lights;
}

// Parts of the same light as one.
std::vector<Light> gathered(std::vector<Light> lights) {
  std::vector<Light> result;
  for (Light& light : lights) {
    if (light.share < kLeastLight || light.where.empty()) continue;
    Light* same = nullptr;
    for (Light& other : result)
      if (std::fabs(other.share - light.share) < kLeastLight) same = &other;
    if (!same) {
      result.push_back(std::move(light));
      continue;
    }
    for (Contour& contour : light.where) same->where.push_back(std::move(contour));
  }
  return result;
}

std::shared_ptr<Group> masked(DisplayList content, DisplayList mask, bool byAlpha, const PassContext& context) {
  PassContext within = context;
  within.gradientSteps = kMostBands;
  mask = outlineStrokes(spreadClips(mask, within), within);
  std::vector<Shape> shapes = flattenGroups(applyClips(std::move(mask), within), within);
  for (Shape& shape : shapes) {
    if (!shape.stroke) continue;
    shape.outline = strokeOutline(shape.outline, *shape.stroke, context.frame);
    shape.stroke.reset();
  }
  const std::vector<Light> lights =
      gathered(lightsOf(bandGradients(std::move(shapes), within), byAlpha, context.frame));
  auto group = std::make_shared<Group>();
  if (lights.size() * content.items.size() > kMostParts) {
    context.tell(ArtLoss::LeftOut, "mask", "a mask of too many parts is left out, and what it masks is drawn whole");
    group->members = std::move(content);
    return group;
  }
  for (const Light& light : lights) {
    const double opacity = light.share > 1 - kLeastLight ? 1 : light.share;
    group->members.items.push_back({std::make_shared<Group>(Group{content, opacity}),
                                    {std::make_shared<const Clip>(Clip{light.where, Rule::NonZero})}});
  }
  return group;
}

}  // namespace

DisplayList resolveMasks(DisplayList list, const PassContext& context) {
  DisplayList result;
  for (Item& item : list.items) {
    const auto* const found = std::get_if<std::shared_ptr<Group>>(&item.what);
    if (!found) {
      result.items.push_back(std::move(item));
      continue;
    }
    auto group = std::make_shared<Group>(**found);
    group->members = resolveMasks(std::move(group->members), context);
    if (isOpacity(group->opacity, kMaskedGroup)) {
      if (group->members.items.empty()) continue;
      const Item last = std::move(group->members.items.back());
      group->members.items.pop_back();
      const auto* const mask = std::get_if<std::shared_ptr<Group>>(&last.what);
      // A mask without light shows nothing.
      if (!mask) continue;
      const bool byAlpha = isOpacity((*mask)->opacity, kAlphaMask);
      if (!byAlpha && !isOpacity((*mask)->opacity, kLightMask)) continue;
      const Item light{std::make_shared<Group>(Group{(*mask)->members, 1}), last.clips};
      group = masked(std::move(group->members), DisplayList{{light}}, byAlpha, context);
    }
    result.items.push_back({std::move(group), std::move(item.clips)});
  }
  return result;
}

}  // namespace halvo::art
