#pragma once

#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "import/art/import_frame.h"
#include "import/art/outline.h"

// What a source says is drawn, in the frame's units: the one value that every pass takes and gives.
namespace halvo::art {

// Components from 0 to 1, not multiplied by alpha.
struct Colour {
  double red = 0, green = 0, blue = 0, alpha = 1;
  friend bool operator==(const Colour&, const Colour&) = default;
};

struct GradientStop {
  double offset = 0;
  Colour colour;
};

enum class Spread { None, Pad, Repeat, Reflect };

// Between two points, or from one circle to another.
struct Gradient {
  bool isRadial = false;
  Point from, to;
  double fromRadius = 0, toRadius = 0;
  // By offset; never empty.
  std::vector<GradientStop> stops;
  Spread spread = Spread::Pad;
  // From the frame's units to those of the points above.
  Matrix toGradient;
};

struct DisplayList;

// A picture set again and again, or once where it does not repeat.
struct Pattern {
  std::shared_ptr<const DisplayList> picture;
  double width = 0, height = 0;
  bool repeats = false;
  // From the frame's units to those of the picture.
  Matrix toPattern;
};

using Paint = std::variant<Colour, Gradient, Pattern>;

enum class Rule { NonZero, EvenOdd };
enum class LineCap { Butt, Round, Square };
enum class LineJoin { Miter, Round, Bevel };

struct StrokeStyle {
  double width = 1;
  LineCap cap = LineCap::Butt;
  LineJoin join = LineJoin::Miter;
  double miterLimit = 10;
  std::vector<double> dashes;
  double dashOffset = 0;
  // From the pen's units to the frame's: what makes a round pen an oval.
  Matrix pen;
};

struct Clip {
  Outline outline;
  Rule rule = Rule::NonZero;
};

// A fill, or a stroke where there is a style.
struct Shape {
  Outline outline;
  Rule rule = Rule::NonZero;
  std::optional<StrokeStyle> stroke;
  Paint paint;
  // No point lies within its contours a negative number of times, so that it may join others of its kind.
  bool windsOneWay = false;
};

struct Group;

struct Item {
  std::variant<Shape, std::shared_ptr<Group>> what;
  std::vector<std::shared_ptr<const Clip>> clips;
};

struct DisplayList {
  std::vector<Item> items;
};

// Drawn apart, then laid over what is below as one.
struct Group {
  DisplayList members;
  double opacity = 1;
};

// What is left for the writer: a fill, or a stroke as the player draws it.
struct FlatShape {
  Outline outline;
  Colour colour;
  std::optional<double> strokeWidth;
  bool windsOneWay = false;
  // Laid over a stroke whose ends or corners are round, as wide as it is.
  std::vector<Point> dots = {};
  // What such a stroke covers, dots and all: the writer takes what is shorter.
  Outline asFill = {};
};

// Around what says most of it; a stroke's own reach comes on top.
inline Box boundsOf(const FlatShape& shape) { return boundsOf(shape.asFill.empty() ? shape.outline : shape.asFill); }

// What polygon clipping may still take, in corners. A small document can ask for more than anyone would wait for.
struct Work {
  double left = 6e6;
};

// A frame's measures.
struct Frame {
  double side = 480;
  // Where the source shows; the rest of the square stays empty.
  Box viewport;
  // How far a curve may be from what it stands for.
  double tolerance = 0.005;
  std::shared_ptr<Work> work = std::make_shared<Work>();
};

Item mapped(Item item, const Matrix& matrix);
Box boundsOf(const Item& item);

// Around what a stroke covers, at its widest.
Box boundsOf(const Shape& shape);

}  // namespace halvo::art
