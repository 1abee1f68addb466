#pragma once

#include <vector>

#include "platform/quartzcore/raster/affine.h"
#include "platform/quartzcore/raster/curve.h"

// Outlines of lines and cubics, and what every pass asks of them.
namespace halvo::art {

using Point = quellaro::CGPoint;
using Matrix = quellaro::Affine;
using quellaro::Box;
using quellaro::Cubic;

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, double factor) { return {a.x * factor, a.y * factor}; }
inline double dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
inline double cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
inline double length(Point way) { return std::hypot(way.x, way.y); }

struct Segment {
  // A line's are not read.
  Point control1, control2;
  Point end;
  bool isLine = true;
};

inline Segment lineTo(Point end) { return {end, end, end, true}; }
inline Segment curveTo(Point control1, Point control2, Point end) { return {control1, control2, end, false}; }

struct Contour {
  Point start;
  std::vector<Segment> segments;
  // Fills close every contour; strokes only these.
  bool isClosed = false;

  Point end() const { return segments.empty() ? start : segments.back().end; }
};

using Outline = std::vector<Contour>;

// Tight around the curves, not their handles.
Box boundsOf(const Outline& outline);
Box boundsOf(const Contour& contour);
bool isEmpty(const Box& box);
Box commonBox(const Box& a, const Box& b);

Outline mapped(Outline outline, const Matrix& matrix);
Contour reversed(const Contour& contour);
double determinant(const Matrix& matrix);
// Of a matrix whose determinant is not 0.
Matrix inverse(const Matrix& matrix);

// The curve that a segment is, a line as one too.
Cubic curveOf(Point start, const Segment& segment);
Point pointAt(const Cubic& curve, double t);
// Its first derivative.
Point wayAt(const Cubic& curve, double t);
// From one parameter to another, which may be the smaller one.
Cubic partOf(const Cubic& curve, double from, double to);

Outline rectangle(const Box& box);
Contour ellipse(Point centre, Point radiusX, Point radiusY);
// Whether the outline is one rectangle with level sides; gives its box.
bool isRectangle(const Outline& outline, Box& box);

}  // namespace halvo::art
