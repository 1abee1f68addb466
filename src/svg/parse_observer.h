#pragma once

#include <span>
#include <string_view>

#include "platform/coregraphics/path.h"
#include "platform/foundation/xml/xml_parser.h"

namespace quellaro {

class SVGElement;

// Told what the parser meets in a document and what it makes of it, so that a tool can show what is lost. All views are
// into the document's text or into what the document keeps.
class SVGParseObserver {
 public:
  virtual ~SVGParseObserver() = default;
  // The element with its paint inherited and without its children; null when the name is not known, which is as if only
  // the content were there.
  virtual void didStartElement(std::string_view name, XMLAttributes attributes, const SVGElement* element) = 0;
  virtual void didEndElement(std::string_view name) = 0;
  // The text is not read beyond this.
  virtual void didFail(const XMLError& error) = 0;
};

// Told how the data of one path is read.
class SVGPathObserver {
 public:
  virtual ~SVGPathObserver() = default;
  // The run of letters as it stands in the data, all numbers that were read for it, and the outline so far.
  virtual void didApplyCommand(std::string_view run, std::span<const double> numbers, const CGPath& outline) = 0;
  // Once, at the end: what was left unread.
  virtual void didStop(std::string_view rest) = 0;
};

}  // namespace quellaro
