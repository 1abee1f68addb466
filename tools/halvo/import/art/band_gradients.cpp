#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "import/art/gradient_field.h"
#include "import/art/passes.h"
#include "import/art/players_stroke.h"
#include "import/art/stroke_outline.h"

namespace halvo::art {

namespace {

// Of the frame's side: neighbours lie over each other by so much, more than a pixel of a small picture.
constexpr double kOverlap = 1.6 / 480;
// No band is narrower.
constexpr double kNarrowest = 2.0 / 480;

std::string inWords(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

// Large areas show steps best.
Fineness finenessOf(const Outline& outline, const GradientField& field, const PassContext& context) {
  const Box box = boundsOf(outline);
  const double share = (box.maxX - box.minX) * (box.maxY - box.minY) / (context.frame.side * context.frame.side);
  Fineness fineness;
  fineness.step = std::clamp(0.6 / std::max(share, 1e-6), 1.5, 3.0);
  fineness.mostPerUnit = field.unitsPerStep() / (kNarrowest * context.frame.side);
  if (context.gradientSteps) fineness.most = std::max(1, *context.gradientSteps);
  return fineness;
}

double largestStep(const std::vector<Band>& bands) {
  double most = 0;
  for (std::size_t i = 1; i < bands.size(); ++i) {
    const Colour& a = bands[i - 1].colour;
    const Colour& b = bands[i].colour;
    most = std::max({most, std::fabs(a.red - b.red), std::fabs(a.green - b.green), std::fabs(a.blue - b.blue)});
  }
  return most * 255;
}

class Bander {
 public:
  explicit Bander(const PassContext& context) : context_(context) {}

  std::vector<FlatShape> take() { return std::move(result_); }

  void add(Shape shape) {
    if (const auto* gradient = std::get_if<Gradient>(&shape.paint)) return addGradient(shape, *gradient);
    const auto* colour = std::get_if<Colour>(&shape.paint);
    if (!colour) return;
    if (shape.stroke) return addStroke(shape, *colour);
    result_.push_back({std::move(shape.outline), *colour, std::nullopt, shape.windsOneWay});
  }

 private:
  void addStroke(const Shape& shape, const Colour& colour) {
    FlatShape flat{shape.outline, colour, shape.stroke->width * shape.stroke->pen.stretch()};
    if (auto dotted = dottedStroke(shape, context_.frame)) {
      Outline outline = strokeOutline(shape.outline, *shape.stroke, context_.frame);
      if (colour.alpha >= 1) {
        flat.outline = std::move(dotted->lines);
        flat.dots = std::move(dotted->dots);
        flat.asFill = std::move(outline);
      } else if (!dotted->dots.empty()) {
        // Its group has made it sheer.
        flat = {std::move(outline), colour, std::nullopt, true};
      }
    }
    result_.push_back(std::move(flat));
  }

  void addGradient(const Shape& shape, const Gradient& gradient) {
    const char* const name = gradient.isRadial ? "radialGradient" : "linearGradient";
    const GradientField field(gradient, context_.frame);
    // As everything beyond its end.
    if (!field.isRegular()) return addPlain(shape.outline, gradient.stops.back().colour);
    const auto ramp = rampOf(gradient, field.stretchOf(boundsOf(shape.outline)));
    if (!ramp) {
      context_.tell(ArtLoss::Approximated, name, "a gradient that repeats too often is one colour");
      return addPlain(shape.outline, gradient.stops.front().colour);
    }
    if (ramp->empty()) return addPlain(shape.outline, gradient.stops.front().colour);
    const Fineness fineness = finenessOf(shape.outline, field, context_);
    const double overlap = kOverlap * context_.frame.side / field.unitsPerStep();
    const RampParts parts = partsOf(*ramp, overlap);
    if (parts.sheer.empty() && parts.opaque.size() == 1)
      return addBands(shape.outline, field, bandsOf(parts.opaque[0], fineness), name);
    addVeils(shape.outline, field, veilsOf(parts.sheer, fineness), fineness, name);
    for (const std::vector<RampPoint>& part : parts.opaque)
      for (const Band& band : bandsOf(part, fineness)) {
        const bool isLast = band.where.to >= part.back().t;
        const Stretch where{band.where.from, isLast ? band.where.to : band.where.to + overlap};
        result_.push_back({field.within(shape.outline, {where}), band.colour, std::nullopt, false});
        result_.back().colour.alpha = 1;
      }
  }

  void addPlain(const Outline& outline, const Colour& colour) {
    result_.push_back({outline, colour, std::nullopt, false});
  }

  void addBands(const Outline& outline, const GradientField& field, const std::vector<Band>& bands, const char* name) {
    std::vector<Outline> layers = field.layered(outline, bands, kOverlap * context_.frame.side);
    // Each band lies over the one after it in a radial gradient, whose largest circles come first.
    const bool isRadial = std::string_view(name) == "radialGradient";
    for (std::size_t i = 0; i < layers.size(); ++i) {
      const std::size_t at = isRadial ? layers.size() - 1 - i : i;
      result_.push_back({std::move(layers[at]), bands[at].colour, std::nullopt, false});
    }
    if (bands.size() > 1)
      context_.tell(ArtLoss::Approximated, name, "a gradient in " + std::to_string(bands.size()) + " bands",
                    "at most " + inWords(largestStep(bands) / 2) + " of 255");
  }

  void addVeils(const Outline& outline, const GradientField& field, const std::vector<Veil>& veils,
                const Fineness& fineness, const char* name) {
    for (const Veil& veil : veils)
      result_.push_back({field.within(outline, veil.where), veil.colour, std::nullopt, false});
    if (veils.size() > 1)
      context_.tell(ArtLoss::Approximated, name, "a gradient of opacity in " + std::to_string(veils.size()) + " layers",
                    "at most " + inWords(fineness.step / 2) + " of 255");
  }

  const PassContext& context_;
  std::vector<FlatShape> result_;
};

}  // namespace

std::vector<FlatShape> bandGradients(std::vector<Shape> shapes, const PassContext& context) {
  Bander bander(context);
  for (Shape& shape : shapes) bander.add(std::move(shape));
  return bander.take();
}

}  // namespace halvo::art
