#pragma once

#include <optional>
#include <vector>

#include "import/art/display_list.h"
#include "import/art/import_frame.h"

// From what a source may say to what the player can draw, in this order.
namespace halvo::art {

struct PassContext {
  Frame frame;
  std::optional<int> gradientSteps;
  std::vector<ArtNote>* notes = nullptr;

  void tell(ArtLoss loss, std::string element, std::string what, std::string howFar = "") const {
    notes->push_back({loss, std::move(element), std::move(what), std::move(howFar)});
  }
};

// A pattern becomes its pictures, clipped by the shape that it fills.
DisplayList unrollPatterns(DisplayList list, const PassContext& context);

// A mask becomes clips, and opacity where it lets a part of the light through.
DisplayList resolveMasks(DisplayList list, const PassContext& context);

// Groups hand their clips to their members, and everything is clipped by the viewport. Clips that cut nothing go.
DisplayList spreadClips(const DisplayList& list, const PassContext& context);

// Strokes that the player cannot draw, and those that are clipped, become fills.
DisplayList outlineStrokes(DisplayList list, const PassContext& context);

// Fills keep what lies within all of their clips, by the nonzero rule.
DisplayList applyClips(DisplayList list, const PassContext& context);

// Members take over their groups' opacity; where they overlap, what shows of the lower is cut out.
std::vector<Shape> flattenGroups(const DisplayList& list, const PassContext& context);

// Gradients become bands, each of one colour.
std::vector<FlatShape> bandGradients(std::vector<Shape> shapes, const PassContext& context);

// Drops what is not seen, and joins neighbours of the same paint.
std::vector<FlatShape> mergeShapes(std::vector<FlatShape> shapes, const PassContext& context);

// All of them.
std::vector<FlatShape> flatten(DisplayList list, const PassContext& context);

}  // namespace halvo::art
