#include "svg/document.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/xml_parser.h"
#include "svg/document_parser.h"

namespace quellaro {

namespace {

// The arena's first block; the others grow with it.
constexpr std::size_t kSmallestBlock = 1 << 10;
constexpr std::size_t kLargestBlock = 1 << 16;

}  // namespace

std::shared_ptr<SVGDocument> SVGDocument::parse(std::string text) {
  auto document = std::make_shared<SVGDocument>();
  document->text_ = std::move(text);
  document->arena_ = std::make_shared<Arena>(std::clamp(document->text_.size() / 8, kSmallestBlock, kLargestBlock));
  SVGDocumentParser delegate(document->arena_);
  NSXMLParser parser(document->text_, *document->arena_);
  parser.setDelegate(&delegate);
  parser.parse();
  document->viewbox_ = delegate.viewbox();
  document->elements_ = delegate.takeElements();
  return document;
}

}  // namespace quellaro
