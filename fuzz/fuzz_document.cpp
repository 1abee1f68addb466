// Any bytes as a frame: parsed, made into layers, and taken apart.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/foundation/console.h"
#include "platform/quartzcore/layer.h"
#include "svg/document.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quellaro::setConsoleSink([](std::string_view) {});
  const auto document = quellaro::SVGDocument::parse(std::string(reinterpret_cast<const char*>(data), size));
  const auto layer = document->makeLayer();
  if (layer != nullptr && layer->sublayers().size() != document->elements()->size()) std::abort();
  return 0;
}
