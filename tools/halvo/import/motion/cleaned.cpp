#include "import/motion/cleaned.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "import/motion/json_fields.h"
#include "platform/foundation/json/json_writer.h"

namespace halvo::motion {

namespace {

using quellaro::JSONWriter;

// Of any layer: what stays of one that draws nothing.
constexpr std::array<std::string_view, 10> kCarrierKeys = {"ind", "parent", "ks", "ip",  "op",
                                                           "st",  "sr",     "nm", "ddd", "ao"};
// Of a layer that is drawn: what is not.
constexpr std::array<std::string_view, 3> kUnusedKeys = {"ef", "t", "sy"};
constexpr std::array<std::string_view, 4> kWaysOn = {"i", "o", "ti", "to"};
constexpr std::array<std::string_view, 5> kUnusedOfFile = {"markers", "fonts", "chars", "meta", "metadata"};

template <std::size_t kCount>
bool isOneOf(std::string_view key, const std::array<std::string_view, kCount>& keys) {
  return std::ranges::find(keys, key) != keys.end();
}

class Cleaner {
 public:
  std::string clean(const JSONValue& root) {
    json_.beginObject();
    for (const auto& [key, value] : root.members()) {
      if (isOneOf(key, kUnusedOfFile)) continue;
      json_.key(key);
      if (key == "layers")
        layers(value);
      else if (key == "assets")
        assets(value);
      else if (key == "w" || key == "h")
        json_.integer(static_cast<std::int64_t>(std::lround(value.number().value_or(0))));
      else
        plain(value);
    }
    json_.endObject();
    return json_.take();
  }

 private:
  void assets(const JSONValue& value) {
    json_.beginArray();
    for (const JSONValue& asset : value.elements()) {
      json_.beginObject().key("id").string(textOf(asset, "id")).key("layers");
      if (const auto own = asset.member("layers"))
        layers(*own);
      else
        json_.beginArray().endArray();
      json_.endObject();
    }
    json_.endArray();
  }

  void layers(const JSONValue& value) {
    json_.beginArray();
    for (const JSONValue& layer : value.elements())
      if (layer.type() == JSONType::Object) this->layer(layer);
    json_.endArray();
  }

  void layer(const JSONValue& layer) {
    const int kind = kindOf(layer);
    json_.beginObject().key("ty").integer(isDrawn(kind) ? kind : kNothing);
    for (const auto& [key, value] : layer.members()) {
      if (key == "ty" || isOneOf(key, kUnusedKeys) || (!isDrawn(kind) && !isOneOf(key, kCarrierKeys))) continue;
      if (key == "hasMask" || key == "masksProperties") continue;
      json_.key(key);
      plain(value);
    }
    if (isDrawn(kind)) masks(elementsOf(layer, "masksProperties"));
    json_.endObject();
  }

  // Those that do nothing would count as others, and a layer with no other as one of which nothing shows.
  void masks(std::vector<JSONValue> masks) {
    std::erase_if(masks, [](const JSONValue& mask) { return textOf(mask, "mode") == "n"; });
    if (masks.empty()) return;
    json_.key("hasMask").boolean(true).key("masksProperties").beginArray();
    bool isFirst = true;
    for (const JSONValue& mask : masks) {
      const std::string mode = textOf(mask, "mode");
      std::string_view turned;
      if (numberOf(mask, "inv") != 0) turned = mode == "s" ? "i" : mode == "i" || isFirst ? "s" : "";
      isFirst = false;
      json_.beginObject();
      for (const auto& [key, inner] : mask.members()) {
        json_.key(key);
        if (key == "mode" && !turned.empty())
          json_.string(turned);
        else if (key == "inv" && !turned.empty())
          json_.boolean(false);
        else
          plain(inner);
      }
      json_.endObject();
    }
    json_.endArray();
  }

  static bool isKeyed(const JSONValue& value) {
    const std::vector<JSONValue> keys = value.elements();
    return !keys.empty() && keys.back().member("t");
  }

  // From the last key nothing leads on, whatever it says: the library would go there. One by itself is no motion.
  void keys(const std::vector<JSONValue>& keys) {
    if (const auto only = keys.size() == 1 ? keys.back().member("s") : std::nullopt) {
      const std::vector<JSONValue> parts = only->elements();
      return plain(!parts.empty() && parts[0].type() == JSONType::Object ? parts[0] : *only);
    }
    json_.beginArray();
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) plain(keys[i]);
    json_.beginObject();
    for (const auto& [key, member] : keys.back().members()) {
      if (isOneOf(key, kWaysOn)) continue;
      json_.key(key);
      plain(member);
    }
    json_.endObject().endArray();
  }

  // Whole numbers are written as such: the library misreads them otherwise.
  void plain(const JSONValue& value) {
    if (value.type() == JSONType::Array) {
      json_.beginArray();
      for (const JSONValue& element : value.elements()) plain(element);
      json_.endArray();
    } else if (value.type() == JSONType::Object) {
      json_.beginObject();
      for (const auto& [key, member] : value.members()) {
        // What is computed from an expression stands beside it.
        if (key == "x" && member.type() == JSONType::String) continue;
        json_.key(key);
        if (key == "k" && isKeyed(member))
          keys(member.elements());
        else
          plain(member);
      }
      json_.endObject();
    } else if (const auto whole = value.wholeNumber()) {
      json_.integer(*whole);
    } else {
      json_.raw(value.text());
    }
  }

  JSONWriter json_;
};

}  // namespace

std::string cleanedMotion(const JSONValue& root) { return Cleaner().clean(root); }

}  // namespace halvo::motion
