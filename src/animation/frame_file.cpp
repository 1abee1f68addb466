#include "animation/frame_file.h"

#include <utility>

#include "platform/foundation/file_manager.h"
#include "platform/foundation/json_reader.h"
#include "platform/foundation/limits.h"

namespace quellaro {

Result<std::vector<std::string>> readFrameFile(const std::string& path) {
  auto bytes = FileManager::readAtPath(path);
  if (!bytes) return bytes.error();
  return decodeFrames(std::move(*bytes));
}

Result<std::vector<std::string>> decodeFrames(std::string bytes) {
  const auto document = JSONDocument::parse(std::move(bytes));
  if (!document) return document.error();
  const std::vector<JSONValue> elements = document->root().elements();
  if (elements.size() > limits::kFrames)
    return NSError{"NSCocoaErrorDomain", 0, "More than " + std::to_string(limits::kFrames) + " frames"};
  std::vector<std::string> frames;
  frames.reserve(elements.size());
  for (const JSONValue& element : elements) {
    const auto text = element.string();
    if (!text) return std::vector<std::string>();
    frames.emplace_back(*text);
  }
  return frames;
}

}  // namespace quellaro
