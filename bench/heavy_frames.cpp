#include "heavy_frames.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "platform/quartzcore/shape_layer.h"

namespace quellaro::bench {

namespace {

// Small, and the same everywhere, which the standard's distributions are not.
class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761u + 1) {}
  double between(double low, double high) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return low + (high - low) * (state_ / 4294967296.0);
  }

 private:
  std::uint32_t state_;
};

constexpr double kPi = std::numbers::pi;

// As many digits as a drawing tool exports.
double exported(double value) { return std::round(value * 100) / 100; }
CGPoint exported(CGPoint p) { return {exported(p.x), exported(p.y)}; }

CGColor colorOf(Random& random) {
  const auto byte = [&random] { return std::floor(random.between(0, 256)) / 255; };
  const double red = byte();
  const double green = byte();
  return {red, green, byte(), 1};
}

// A closed outline of smooth curves around a centre.
CGPath blob(Random& random, CGPoint centre, double radius, int curves, double phase) {
  std::vector<CGPoint> corners;
  for (int i = 0; i < curves; ++i) {
    const double angle = 2 * kPi * i / curves + phase;
    const double r = radius * random.between(0.7, 1.15);
    corners.push_back({centre.x + r * std::cos(angle), centre.y + r * std::sin(angle)});
  }
  const auto corner = [&](int i) { return corners[static_cast<std::size_t>((i + curves) % curves)]; };
  CGPath path;
  path.moveTo(exported(corner(0)));
  for (int i = 0; i < curves; ++i) {
    const CGPoint before = corner(i - 1);
    const CGPoint from = corner(i);
    const CGPoint to = corner(i + 1);
    const CGPoint after = corner(i + 2);
    path.cubicTo(exported({from.x + (to.x - before.x) / 6, from.y + (to.y - before.y) / 6}),
                 exported({to.x - (after.x - from.x) / 6, to.y - (after.y - from.y) / 6}), exported(to));
  }
  path.close();
  return path;
}

CGPath wave(Random& random, CGPoint from, double length, int curves, double phase) {
  CGPath path;
  path.moveTo(exported(from));
  CGPoint at = from;
  double heading = random.between(0, 2 * kPi) + phase;
  for (int i = 0; i < curves; ++i) {
    const double next = heading + random.between(-0.9, 0.9);
    const double third = length / curves / 3;
    const CGPoint first{at.x + third * std::cos(heading), at.y + third * std::sin(heading)};
    const CGPoint to{at.x + 3 * third * std::cos((heading + next) / 2),
                     at.y + 3 * third * std::sin((heading + next) / 2)};
    path.cubicTo(exported(first), exported({to.x - third * std::cos(next), to.y - third * std::sin(next)}),
                 exported(to));
    heading = next;
    at = to;
  }
  return path;
}

void append(std::string& text, double number) {
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed);
  text.append(buffer, end.ptr);
}

std::string pathData(const CGPath& path) {
  std::string text;
  const PathPoints points = path.points();
  std::size_t next = 0;
  for (const PathVerb verb : path.verbs()) {
    text += "MLQCZ"[static_cast<int>(verb)];
    for (int i = 0; i < pointCount(verb); ++i, ++next) {
      if (i > 0) text += ' ';
      append(text, points[next].x);
      text += ',';
      append(text, points[next].y);
    }
  }
  return text;
}

std::string hexadecimal(const CGColor& color) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "#";
  for (const double component : {color.red, color.green, color.blue}) {
    const int byte = static_cast<int>(component * 255 + 0.5);
    text += kDigits[byte / 16];
    text += kDigits[byte % 16];
  }
  return text;
}

}  // namespace

Drawing heavyFrame(int number) {
  constexpr double kSide = 1080;
  Random random(7);
  Drawing drawing{kSide, {}};
  const double phase = number * 0.01;
  for (int i = 0; i < 45; ++i) {
    // Sizes are even on a logarithmic scale; big shapes lie below small ones.
    const double radius = 500 * std::pow(0.02, i / 44.0) * random.between(0.7, 1.3);
    const CGPoint centre{random.between(150, kSide - 150) + 20 * std::sin(phase), random.between(150, kSide - 150)};
    Shape shape;
    shape.color = colorOf(random);
    shape.isStroke = i % 6 == 5;
    if (shape.isStroke) {
      shape.lineWidth = exported(random.between(1.5, 9));
      shape.path = wave(random, centre, 4 * radius + 60, 17, phase);
    } else {
      shape.path = blob(random, centre, radius, 17, phase);
    }
    drawing.shapes.push_back(std::move(shape));
  }
  return drawing;
}

Drawing icon(int number) {
  Random random(static_cast<std::uint32_t>(number) + 100);
  Drawing drawing{24, {}};
  Shape disc{blob(random, {12, 12}, 9, 4 + number % 5, 0), false, colorOf(random), 0};
  drawing.shapes.push_back(disc);
  Shape mark{{}, number % 2 == 1, colorOf(random), 2};
  mark.path.moveTo({exported(random.between(5, 9)), 12});
  for (int i = 0; i < 4; ++i) mark.path.lineTo({exported(random.between(4, 20)), exported(random.between(4, 20))});
  mark.path.close();
  drawing.shapes.push_back(mark);
  return drawing;
}

std::string svgText(const Drawing& drawing) {
  std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"";
  append(text, drawing.side);
  text += "\" height=\"";
  append(text, drawing.side);
  text += "\"><g>";
  for (const Shape& shape : drawing.shapes) {
    if (shape.isStroke) {
      text += "<path fill=\"none\" stroke=\"" + hexadecimal(shape.color) + "\" stroke-width=\"";
      append(text, shape.lineWidth);
    } else {
      text += "<path fill=\"" + hexadecimal(shape.color);
    }
    text += "\" d=\"" + pathData(shape.path) + "\"/>";
  }
  return text + "</g></svg>";
}

std::shared_ptr<CALayer> layerTree(const Drawing& drawing, double pixels) {
  auto root = std::make_shared<CALayer>();
  root->setBounds({{0, 0}, {drawing.side, drawing.side}});
  root->setPosition({pixels / 2, pixels / 2});
  root->setTransform(CATransform3DScale(CATransform3DIdentity, pixels / drawing.side, pixels / drawing.side, 1));
  root->setBackgroundColor(CGColor{1, 1, 1, 1});
  for (const Shape& shape : drawing.shapes) {
    auto layer = std::make_shared<CAShapeLayer>();
    layer->setPath(std::make_shared<CGPath>(shape.path));
    layer->setLineWidth(shape.lineWidth);
    if (shape.isStroke)
      layer->setStrokeColor(shape.color);
    else
      layer->setFillColor(shape.color);
    root->addSublayer(std::move(layer));
  }
  return root;
}

std::string animationJson(const std::vector<std::string>& frames) {
  std::string json = "[";
  for (const std::string& frame : frames) {
    if (json.size() > 1) json += ",\n";
    json += '"';
    for (const char c : frame) {
      if (c == '"' || c == '\\') json += '\\';
      json += c;
    }
    json += '"';
  }
  return json + "]\n";
}

}  // namespace quellaro::bench
