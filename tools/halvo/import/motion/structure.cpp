#include "import/motion/structure.h"

#include <cmath>
#include <set>

#include "import/motion/json_fields.h"

namespace halvo::motion {

namespace {

// Levels of the text. Honest files have some thirty.
constexpr int kMostLevels = 200;
// As they are drawn, each as often as it is placed.
constexpr double kMostLayers = 20'000;
constexpr int kMostNested = 32;

bool isTooDeep(const JSONValue& value, int left) {
  if (left == 0) return true;
  for (const JSONValue& element : value.elements())
    if (isTooDeep(element, left - 1)) return true;
  for (const auto& [key, member] : value.members())
    if (isTooDeep(member, left - 1)) return true;
  return false;
}

class LayerCount {
 public:
  explicit LayerCount(const Compositions& compositions) : compositions_(compositions) {}

  // Infinite where a composition contains itself.
  double of(const std::vector<JSONValue>& layers) {
    if (++nested_ > kMostNested) return INFINITY;
    double count = 0;
    for (const JSONValue& layer : layers) count += 1 + within(layer);
    --nested_;
    return count;
  }

 private:
  double within(const JSONValue& layer) {
    if (kindOf(layer) != kComposition) return 0;
    const std::string id = textOf(layer, "refId");
    const auto composition = compositions_.find(id);
    if (composition == compositions_.end()) return 0;
    // Counted once, and while it is being counted: without end.
    const auto [known, isNew] = counts_.try_emplace(id, INFINITY);
    if (isNew) known->second = of(composition->second);
    return known->second;
  }

  const Compositions& compositions_;
  std::map<std::string, double> counts_;
  int nested_ = 0;
};

bool carriesItself(const std::vector<JSONValue>& layers) {
  std::map<double, double> parents;
  for (const JSONValue& layer : layers)
    if (layer.member("parent")) parents.emplace(numberOf(layer, "ind", -1), numberOf(layer, "parent", -1));
  for (const auto& [layer, parent] : parents) {
    std::size_t steps = 0;
    for (auto next = parents.find(parent); next != parents.end(); next = parents.find(next->second))
      if (++steps > parents.size()) return true;
  }
  return false;
}

}  // namespace

Compositions compositionsOf(const JSONValue& root) {
  Compositions compositions;
  for (const JSONValue& asset : elementsOf(root, "assets"))
    if (asset.member("layers")) compositions.emplace(textOf(asset, "id"), elementsOf(asset, "layers"));
  return compositions;
}

std::optional<std::string> whatIsWrongWith(const JSONValue& root, const Compositions& compositions) {
  if (isTooDeep(root, kMostLevels)) return "it is nested more than " + std::to_string(kMostLevels) + " levels deep";
  const std::vector<JSONValue> layers = elementsOf(root, "layers");
  const double count = LayerCount(compositions).of(layers);
  if (std::isinf(count)) return "a composition contains itself, or is placed in too many others";
  double inAll = static_cast<double>(layers.size());
  for (const auto& [id, inner] : compositions) inAll += static_cast<double>(inner.size());
  if (count > kMostLayers || inAll > kMostLayers)
    return "it has more than " + std::to_string(static_cast<int>(kMostLayers)) + " layers";
  bool isCircle = carriesItself(layers);
  for (const auto& [id, inner] : compositions) isCircle = isCircle || carriesItself(inner);
  if (isCircle) return "a layer is its own parent";
  return std::nullopt;
}

}  // namespace halvo::motion
