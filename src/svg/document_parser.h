#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/coregraphics/geometry.h"
#include "platform/foundation/xml/xml_parser.h"
#include "svg/element.h"
#include "svg/parse_observer.h"
#include "svg/stack.h"

namespace quellaro {

// Makes the elements of one document as the XML parser comes upon them. Elements it does not know are as if only their
// content were there.
class SVGDocumentParser : public NSXMLParserDelegate {
 public:
  // The elements are made in the arena.
  explicit SVGDocumentParser(std::shared_ptr<Arena> arena, SVGParseObserver* observer = nullptr)
      : arena_(std::move(arena)), observer_(observer) {}

  void parserDidStartElement(std::string_view name, XMLAttributes attributes) override;
  void parserDidEndElement(std::string_view name) override;

  // Known elements that are still open.
  const Stack<std::shared_ptr<SVGElement>>& stack() const { return stack_; }
  // Of the last "svg" start tag.
  const std::optional<CGSize>& viewbox() const { return viewbox_; }
  // The finished top-level elements, in the order of their end tags. Leaves none.
  std::vector<std::shared_ptr<SVGElement>> takeElements() { return std::move(elements_); }

 private:
  std::shared_ptr<Arena> arena_;
  SVGParseObserver* observer_;
  Stack<std::shared_ptr<SVGElement>> stack_;
  std::vector<std::shared_ptr<SVGElement>> elements_;
  std::optional<CGSize> viewbox_;
};

}  // namespace quellaro
