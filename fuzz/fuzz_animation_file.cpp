// Any bytes as animation.json: its texts, and a document for each of them, or a reason.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "animation/frame_file.h"
#include "platform/foundation/console.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quellaro;
  setConsoleSink([](std::string_view) {});
  auto texts = decodeFrames(std::string(reinterpret_cast<const char*>(data), size));
  if (!texts) return texts.error().localizedDescription.empty() ? std::abort() : void(), 0;
  const std::size_t count = texts->texts.size();
  const auto documents = parseFrames(std::move(*texts));
  if (documents ? documents->size() != count : documents.error().localizedDescription.empty()) std::abort();
  return 0;
}
