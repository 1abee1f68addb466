#include "import/motion/survey.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>

#include "import/motion/json_fields.h"

namespace halvo::motion {

namespace {

constexpr std::size_t kMostNotes = 500;

struct Named {
  int number;
  const char* name;
};
constexpr Named kEffects[] = {{20, "tint"},       {21, "fill"},        {22, "stroke"},      {23, "tritone"},
                              {24, "pro levels"}, {25, "drop shadow"}, {26, "radial wipe"}, {27, "displacement map"},
                              {28, "set matte"},  {29, "blur"},        {30, "twirl"},       {31, "mesh warp"},
                              {32, "wavy"},       {33, "spherize"},    {34, "puppet"}};
constexpr const char* kBlends[] = {"normal",      "multiply",   "screen",     "overlay",    "darken",     "lighten",
                                   "color dodge", "color burn", "hard light", "soft light", "difference", "exclusion",
                                   "hue",         "saturation", "color",      "luminosity", "add",        "hard mix"};
// What the library that evaluates leaves as it was before.
constexpr std::pair<const char*, const char*> kModifiers[] = {{"mm", "merged paths are drawn each for itself"},
                                                              {"rd", "corners are not rounded"},
                                                              {"pb", "pucker and bloat are left out"},
                                                              {"tw", "a twist is left out"},
                                                              {"zz", "a zigzag is left out"},
                                                              {"op", "an offset of paths is left out"}};

bool hasExpression(const JSONValue& value) {
  for (const auto& [key, member] : value.members()) {
    if (key == "x" && member.type() == JSONType::String) return true;
    if (key != "ef" && hasExpression(member)) return true;
  }
  const std::vector<JSONValue> elements = value.elements();
  return std::ranges::any_of(elements, hasExpression);
}

// Whether an animated or plain number is ever anything but 0.
bool isEverSet(const JSONValue& object, std::string_view key) {
  const auto property = object.member(key);
  if (!property) return false;
  const auto value = property->member("k");
  return value && !(value->number() && std::fabs(*value->number()) < 1e-6);
}

class Surveyor {
 public:
  Surveyor(const JSONValue& root, const Compositions& compositions) : compositions_(compositions) {
    for (const JSONValue& asset : elementsOf(root, "assets"))
      if (numberOf(asset, "e") == 0 && !textOf(asset, "p").empty() && !textOf(asset, "p").starts_with("data:"))
        outside_.emplace(textOf(asset, "id"), textOf(asset, "u") + textOf(asset, "p"));
  }

  void layers(const std::vector<JSONValue>& layers, double offset) {
    for (const JSONValue& layer : layers) {
      if (numberOf(layer, "hd") != 0) continue;
      name_ = textOf(layer, "nm");
      frame_ = offset + numberOf(layer, "ip");
      kind(layer);
      effects(layer);
      looks(layer);
      masks(layer);
      for (const JSONValue& item : elementsOf(layer, "shapes")) shape(item);
      const std::string id = textOf(layer, "refId");
      const auto inner = compositions_.find(id);
      // The first place where a composition stands tells for all.
      if (kindOf(layer) == kComposition && inner != compositions_.end() && visited_.insert(id).second)
        this->layers(inner->second, offset + numberOf(layer, "st"));
    }
  }

  std::vector<MotionNote> take() { return std::move(notes_); }

 private:
  void tell(ArtLoss loss, const std::string& element, std::string what) {
    const bool isKnown = std::ranges::any_of(notes_, [&](const MotionNote& known) {
      return known.note.what == what && known.note.element == element + "#" + name_;
    });
    if (!isKnown && notes_.size() < kMostNotes)
      notes_.push_back({{loss, element + "#" + name_, std::move(what), ""}, frame_});
  }

  void kind(const JSONValue& layer) {
    const int kind = kindOf(layer);
    if (isDrawn(kind) || kind == kNothing) return;
    const auto outside = outside_.find(textOf(layer, "refId"));
    if (kind == kPicture && outside != outside_.end())
      tell(ArtLoss::LeftOut, "image", "an image outside of the file is left out: " + outside->second);
    else if (kind == kPicture)
      tell(ArtLoss::LeftOut, "image", "an image is left out");
    else if (kind == kText)
      tell(ArtLoss::LeftOut, "text", "text without outlines is left out");
    else if (kind == kSound)
      tell(ArtLoss::LeftOut, "sound", "a sound is left out; --sound takes it from a file of its own");
    else if (kind != 13)
      tell(ArtLoss::LeftOut, "layer", "a layer of kind " + std::to_string(kind) + " is left out");
  }

  void effects(const JSONValue& layer) {
    for (const JSONValue& effect : elementsOf(layer, "ef")) {
      if (numberOf(effect, "en", 1) == 0) continue;
      const double number = numberOf(effect, "ty");
      // Smaller ones are controls that expressions read.
      if (number < 20) continue;
      const auto* const known =
          std::ranges::find_if(kEffects, [&](const Named& each) { return each.number == number; });
      const std::string name = known == std::end(kEffects) ? textOf(effect, "nm") : known->name;
      tell(ArtLoss::LeftOut, "effect", "an effect is left out: " + name);
    }
    if (!elementsOf(layer, "sy").empty()) tell(ArtLoss::LeftOut, "effect", "layer styles are left out");
  }

  void blend(const JSONValue& object) {
    const double mode = numberOf(object, "bm");
    if (mode == 0) return;
    const bool isKnown = mode > 0 && mode < static_cast<double>(std::size(kBlends));
    tell(ArtLoss::LeftOut, "blend",
         std::string("a blend mode is left out: ") + (isKnown ? kBlends[static_cast<int>(mode)] : "unknown"));
  }

  void looks(const JSONValue& layer) {
    blend(layer);
    if (numberOf(layer, "ddd") != 0) tell(ArtLoss::Approximated, "layer", "depth is drawn without perspective");
    const auto transform = layer.member("ks");
    if (transform && isEverSet(*transform, "sk")) tell(ArtLoss::Approximated, "layer", "a skew is left out");
    if (hasExpression(layer))
      tell(ArtLoss::Approximated, "expression", "expressions are not computed: the values beside them are taken");
  }

  void masks(const JSONValue& layer) {
    bool isFirst = true;
    for (const JSONValue& mask : elementsOf(layer, "masksProperties")) {
      const std::string mode = textOf(mask, "mode");
      if (isEverSet(mask, "x")) tell(ArtLoss::Approximated, "mask", "a mask is drawn without its expansion");
      if (isEverSet(mask, "f")) tell(ArtLoss::Approximated, "mask", "a mask is drawn with sharp edges");
      if (!isFirst && numberOf(mask, "inv") != 0 && mode != "s" && mode != "i" && mode != "n")
        tell(ArtLoss::Approximated, "mask", "an inverted mask that is added to others is added as it is");
      isFirst = false;
    }
  }

  void shape(const JSONValue& item) {
    if (numberOf(item, "hd") != 0) return;
    const std::string kind = textOf(item, "ty");
    if (kind == "gr") {
      for (const JSONValue& inner : elementsOf(item, "it")) shape(inner);
      return;
    }
    blend(item);
    if (kind == "tr" && isEverSet(item, "sk")) tell(ArtLoss::Approximated, "layer", "a skew is left out");
    for (const auto& [name, what] : kModifiers)
      if (kind == name) tell(ArtLoss::Approximated, "shape", what);
  }

  const Compositions& compositions_;
  std::map<std::string, std::string> outside_;
  std::set<std::string> visited_;
  std::vector<MotionNote> notes_;
  std::string name_;
  double frame_ = 0;
};

}  // namespace

std::vector<MotionNote> surveyOf(const JSONValue& root, const Compositions& compositions) {
  Surveyor surveyor(root, compositions);
  surveyor.layers(elementsOf(root, "layers"), 0);
  return surveyor.take();
}

}  // namespace halvo::motion
