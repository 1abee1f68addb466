#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/json/json_reader.h"

// Members of a motion file's objects. Whatever is missing or of another type counts as empty.
namespace halvo::motion {

using quellaro::JSONType;
using quellaro::JSONValue;

inline double numberOf(const JSONValue& object, std::string_view key, double otherwise = 0) {
  const auto value = object.member(key);
  if (!value) return otherwise;
  if (const auto flag = value->boolean()) return *flag ? 1 : 0;
  return value->number().value_or(otherwise);
}

inline std::string textOf(const JSONValue& object, std::string_view key) {
  const auto value = object.member(key);
  return std::string(value ? value->string().value_or("") : "");
}

inline std::vector<JSONValue> elementsOf(const JSONValue& object, std::string_view key) {
  const auto value = object.member(key);
  return value ? value->elements() : std::vector<JSONValue>{};
}

// Kinds of layers that are drawn; all others only move what hangs on them.
enum LayerKind { kComposition = 0, kSolid = 1, kPicture = 2, kNothing = 3, kShapes = 4, kText = 5, kSound = 6 };

inline int kindOf(const JSONValue& layer) {
  const double kind = numberOf(layer, "ty", -1);
  return kind >= 0 && kind < 100 ? static_cast<int>(kind) : -1;
}

inline bool isDrawn(int kind) { return kind == kComposition || kind == kSolid || kind == kShapes; }

}  // namespace halvo::motion
