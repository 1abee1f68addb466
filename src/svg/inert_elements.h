#pragma once

#include "svg/element.h"

namespace quellaro {

// These exist so that documents with them parse. Each behaves as a group: what it contains is drawn with its own
// paint; nothing is shaded, blurred or clipped.
class SVGLinearGradient : public SVGElement {
 public:
  using SVGElement::SVGElement;
};

class SVGFilter : public SVGElement {
 public:
  using SVGElement::SVGElement;
};

class SVGClippath : public SVGElement {
 public:
  using SVGElement::SVGElement;
};

// No element name leads to it: the parser drops "feGaussianBlur".
class SVGFeGaussianBlur : public SVGElement {
 public:
  using SVGElement::SVGElement;
};

}  // namespace quellaro
