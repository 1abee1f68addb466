#include "svg/document.h"

#include <utility>

#include "platform/foundation/xml_parser.h"
#include "svg/document_parser.h"

namespace quellaro {

std::shared_ptr<SVGDocument> SVGDocument::parse(std::string text) {
  const auto document = std::make_shared<SVGDocument>();
  document->text_ = std::move(text);
  SVGDocumentParser delegate;
  NSXMLParser parser(document->text_, document->storage_);
  parser.setDelegate(&delegate);
  parser.parse();
  document->viewbox_ = delegate.viewbox();
  document->elements_ = delegate.takeElements();
  return document;
}

}  // namespace quellaro
