#include "svg/document.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/xml/xml_parser.h"
#include "svg/document_parser.h"
#include "svg/parse_observer.h"

namespace quellaro {

namespace {

// The arena's first block; the others grow with it.
constexpr std::size_t kSmallestBlock = 1 << 10;
constexpr std::size_t kLargestBlock = 1 << 16;

}  // namespace

std::shared_ptr<SVGDocument> SVGDocument::parse(std::string text) {
  const auto kept = std::make_shared<const std::string>(std::move(text));
  return parse(*kept, kept, std::make_shared<Arena>(std::clamp(kept->size() / 8, kSmallestBlock, kLargestBlock)));
}

std::shared_ptr<SVGDocument> SVGDocument::parse(std::string_view text, std::shared_ptr<const void> owner,
                                                std::shared_ptr<Arena> arena, SVGParseObserver* observer) {
  auto document = std::make_shared<SVGDocument>();
  document->textOwner_ = std::move(owner);
  document->arena_ = std::move(arena);
  SVGDocumentParser delegate(document->arena_, observer);
  NSXMLParser parser(text, *document->arena_);
  parser.setDelegate(&delegate);
  if (!parser.parse() && observer != nullptr) observer->didFail(*parser.parserError());
  document->viewbox_ = delegate.viewbox();
  document->elements_ = delegate.takeElements();
  return document;
}

}  // namespace quellaro
