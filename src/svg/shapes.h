#pragma once

#include <string_view>
#include <vector>

#include "svg/element.h"

namespace quellaro {

// The basic shapes. A shape that lacks one of the attributes that make its geometry has an empty outline; numbers are
// read leniently, so that units are passed over.

// From "x1", "y1" to "x2", "y2".
class SVGLine : public SVGElement {
 public:
  SVGLine(std::string_view name, XMLAttributes attributes);

 protected:
  void buildPath(XMLAttributes attributes) override;
};

// "x", "y", "width", "height"; corners are always square.
class SVGRect : public SVGElement {
 public:
  SVGRect(std::string_view name, XMLAttributes attributes);

 protected:
  void buildPath(XMLAttributes attributes) override;
};

// "cx", "cy", "r".
class SVGCircle : public SVGElement {
 public:
  SVGCircle(std::string_view name, XMLAttributes attributes);

 protected:
  void buildPath(XMLAttributes attributes) override;
};

// "cx", "cy", "rx", "ry".
class SVGEllipse : public SVGElement {
 public:
  SVGEllipse(std::string_view name, XMLAttributes attributes);

 protected:
  void buildPath(XMLAttributes attributes) override;
};

// Lines through "points", open.
class SVGPolyline : public SVGElement {
 public:
  SVGPolyline(std::string_view name, XMLAttributes attributes);

 protected:
  void buildPath(XMLAttributes attributes) override;
};

// Lines through "points", closed.
class SVGPolygon : public SVGElement {
 public:
  SVGPolygon(std::string_view name, XMLAttributes attributes);

 protected:
  void buildPath(XMLAttributes attributes) override;
};

// The numbers at the start of the text, separated by blanks, commas and line feeds. `rest` becomes what was not read.
std::vector<double> parseNumberList(std::string_view text, std::string_view* rest = nullptr);

}  // namespace quellaro
