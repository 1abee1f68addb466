#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "import/art/display_list.h"

// What a drawing script puts on its stack.
namespace halvo::art {

// Something drawn to: the picture itself, or a part of it that is drawn apart first.
struct ScriptSurface {
  double width = 0, height = 0;
  // Pixels, which no frame can show.
  bool isImage = false;
  DisplayList list;
};

struct SurfacePattern {
  std::shared_ptr<ScriptSurface> surface;
};

// A source of colour; its matrix goes from the script's units to its own.
struct ScriptPattern {
  std::variant<Colour, Gradient, SurfacePattern> source;
  Matrix matrix;
  Spread spread = Spread::None;
};

struct ScriptContext {
  std::shared_ptr<ScriptSurface> target;
  Matrix matrix;
  Outline path;
  Rule rule = Rule::NonZero;
  // What a new context begins with.
  StrokeStyle stroke{2, LineCap::Butt, LineJoin::Miter, 10, {}, 0, {}};
  bool blends = false;
  std::shared_ptr<ScriptPattern> source = std::make_shared<ScriptPattern>();
  std::vector<std::shared_ptr<const Clip>> clips;
};

struct ScriptName {
  std::string_view text;
};
struct ScriptMark {};
struct ScriptData {};
using ScriptArray = std::vector<double>;
using ScriptDictionary = std::map<std::string_view, double, std::less<>>;

using ScriptValue =
    std::variant<double, ScriptName, ScriptMark, ScriptData, ScriptArray, ScriptDictionary, Matrix,
                 std::shared_ptr<ScriptSurface>, std::shared_ptr<ScriptPattern>, std::shared_ptr<ScriptContext>>;

}  // namespace halvo::art
