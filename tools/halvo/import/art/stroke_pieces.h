#pragma once

#include <vector>

#include "import/art/outline.h"

namespace halvo::art {

// A part of an outline along which the sides of a stroke are easily told.
struct StrokePiece {
  Cubic curve;
  Point begins, ends;  // Directions, of length 1.
  enum class Kind { Line, Curve, Tight } kind = Kind::Line;
  // It begins within a curve, where there is no corner.
  bool goesOn = false;
};

// Cuts a contour so that no piece turns far. Tight is one that bends within less than half of the width, so that its
// inner side would run backwards. Parts of no length are left out.
std::vector<StrokePiece> piecesOf(const Contour& contour, double halfWidth);

// The side of a piece at that distance, to the right of its direction where positive, as curves.
std::vector<Segment> sideOf(const StrokePiece& piece, double distance, double tolerance);

}  // namespace halvo::art
