#pragma once

#include <vector>

#include "platform/coregraphics/geometry.h"
#include "platform/quartzcore/bitmap.h"

namespace quellaro {

// Closed contours of straight lines, in pixels.
using Contours = std::vector<std::vector<CGPoint>>;

// What a stroke of the open contours covers, piece by piece: a rectangle for each line, a miter or a bevel where lines
// meet. All pieces turn the same way.
Contours strokePieces(const Contours& lines, double width);

// White where the contours wind around the place, by 16 x 16 samples of each pixel.
Bitmap bruteForce(const Contours& contours, int width, int height);

}  // namespace quellaro
