#include "import/art/script_painting.h"

#include <utility>

namespace halvo::art {

namespace {

// First from the frame's units to the script's, then what the pattern says.
Matrix fromFrame(const Matrix& pattern, const Matrix& toFrame) { return quellaro::concat(inverse(toFrame), pattern); }

bool isIdentity(const Matrix& m) {
  const auto is = [](double value, double wanted) { return std::fabs(value - wanted) < 1e-6; };
  return is(m.a, 1) && is(m.b, 0) && is(m.c, 0) && is(m.d, 1) && is(m.tx, 0) && is(m.ty, 0);
}

// A move that nothing follows, as after each closing.
Outline withoutMoves(Outline outline) {
  std::erase_if(outline, [](const Contour& contour) { return contour.segments.empty() && !contour.isClosed; });
  return outline;
}

}  // namespace

void ScriptPainting::leaveOut(std::string element, std::string what) const {
  notes.push_back({ArtLoss::LeftOut, std::move(element), std::move(what), ""});
}

std::optional<Paint> ScriptPainting::paintOf(const ScriptContext& context) const {
  const ScriptPattern& pattern = *context.source;
  if (const auto* colour = std::get_if<Colour>(&pattern.source)) return *colour;
  if (const auto* gradient = std::get_if<Gradient>(&pattern.source)) {
    if (gradient->stops.empty()) return std::nullopt;
    Gradient result = *gradient;
    result.spread = pattern.spread;
    result.toGradient = fromFrame(pattern.matrix, toFrame);
    return result;
  }
  const ScriptSurface& surface = *std::get<SurfacePattern>(pattern.source).surface;
  if (surface.isImage) {
    leaveOut("image", "pixels are left out");
    return std::nullopt;
  }
  auto picture = std::make_shared<DisplayList>();
  for (const Item& item : surface.list.items) picture->items.push_back(mapped(item, inverse(toFrame)));
  return Pattern{std::move(picture), surface.width, surface.height, pattern.spread != Spread::None,
                 fromFrame(pattern.matrix, toFrame)};
}

void ScriptPainting::add(const ScriptContext& context, Shape shape) const {
  if (context.blends) notes.push_back({ArtLoss::Approximated, "mix-blend-mode", "drawn without mixing", ""});
  context.target->list.items.push_back({std::move(shape), context.clips});
}

void ScriptPainting::fill(const ScriptContext& context) const {
  std::optional<Paint> paint = paintOf(context);
  if (!paint || context.path.empty()) return;
  add(context, {mapped(withoutMoves(context.path), toFrame), context.rule, std::nullopt, *std::move(paint), false});
}

void ScriptPainting::stroke(const ScriptContext& context) const {
  std::optional<Paint> paint = paintOf(context);
  if (!paint || context.path.empty()) return;
  StrokeStyle style = context.stroke;
  style.pen = quellaro::concat(context.matrix, toFrame);
  style.pen.tx = style.pen.ty = 0;
  add(context, {mapped(withoutMoves(context.path), toFrame), context.rule, std::move(style), *std::move(paint), false});
}

void ScriptPainting::addPicture(const ScriptContext& context, double opacity) const {
  const ScriptPattern& pattern = *context.source;
  const ScriptSurface& surface = *std::get<SurfacePattern>(pattern.source).surface;
  if (surface.isImage) return leaveOut("image", "pixels are left out");
  if (context.blends) notes.push_back({ArtLoss::Approximated, "mix-blend-mode", "drawn without mixing", ""});
  if (surface.list.items.empty()) return;
  Group group{surface.list, opacity};
  if (!isIdentity(pattern.matrix)) {
    Shape shape{mapped(rectangle({0, 0, context.target->width, context.target->height}), toFrame), Rule::NonZero,
                std::nullopt, *paintOf(context), false};
    group.members = {{{std::move(shape), {}}}};
  }
  context.target->list.items.push_back({std::make_shared<Group>(std::move(group)), context.clips});
}

void ScriptPainting::paint(const ScriptContext& context) const {
  if (std::holds_alternative<SurfacePattern>(context.source->source)) return addPicture(context, 1);
  ScriptContext whole = context;
  whole.path = rectangle({0, 0, context.target->width, context.target->height});
  fill(whole);
}

void ScriptPainting::mask(const ScriptContext& context, const ScriptPattern& through) const {
  if (const auto* colour = std::get_if<Colour>(&through.source)) {
    if (std::holds_alternative<SurfacePattern>(context.source->source)) return addPicture(context, colour->alpha);
    ScriptContext apart = context;
    apart.target =
        std::make_shared<ScriptSurface>(ScriptSurface{context.target->width, context.target->height, false, {}});
    apart.clips.clear();
    paint(apart);
    context.target->list.items.push_back(
        {std::make_shared<Group>(Group{apart.target->list, colour->alpha}), context.clips});
    return;
  }
  leaveOut("mask", "a mask of pixels is left out, and what it masks is drawn whole");
  paint(context);
}

void ScriptPainting::clip(ScriptContext& context) const {
  context.clips.push_back(
      std::make_shared<const Clip>(Clip{mapped(withoutMoves(context.path), toFrame), context.rule}));
}

}  // namespace halvo::art
