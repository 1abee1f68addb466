#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/coregraphics/color.h"
#include "platform/coregraphics/path.h"
#include "platform/quartzcore/layer.h"

namespace quellaro::bench {

struct Shape {
  CGPath path;
  bool isStroke = false;  // else filled
  CGColor color;
  double lineWidth = 0;
};

// Shapes on a square.
struct Drawing {
  double side = 0;
  std::vector<Shape> shapes;
};

// A frame like artwork exported from a drawing tool: shapes of cubic curves, from the size of the whole picture down to
// a dot, and a few strokes. About 34 KB of text and 4700 numbers. The same number always gives the same frame, and
// neighbours differ a little, as the frames of an animation do.
Drawing heavyFrame(int number);

// A small icon: two or three shapes of lines and curves on a grid of 24 units.
Drawing icon(int number);

std::string svgText(const Drawing& drawing);
// Stretched over a square of so many pixels, on white.
std::shared_ptr<CALayer> layerTree(const Drawing& drawing, double pixels);

// The frames as animation.json holds them.
std::string animationJson(const std::vector<std::string>& frames);

}  // namespace quellaro::bench
