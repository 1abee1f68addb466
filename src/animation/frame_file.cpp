#include "animation/frame_file.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

Result<FrameTexts> readFrameFile(const std::string& path) {
  auto bytes = FileManager::readAtPath(path);
  if (!bytes) return bytes.error();
  return decodeFrames(std::move(*bytes));
}

Result<FrameTexts> decodeFrames(std::string bytes) {
  auto document = JSONDocument::parse(std::move(bytes));
  if (!document) return document.error();
  auto strings = std::move(*document).takeStrings();
  if (!strings) return FrameTexts();
  if (strings->strings.size() > limits::kFrames)
    return NSError{"NSCocoaErrorDomain", 0, "More than " + std::to_string(limits::kFrames) + " frames"};
  return FrameTexts{std::move(strings->storage), std::move(strings->strings), std::move(strings->spent)};
}

std::vector<std::shared_ptr<const SVGDocument>> parseFrames(FrameTexts frames) {
  const auto arena = std::make_shared<Arena>(std::move(frames.spent));
  std::vector<std::shared_ptr<const SVGDocument>> documents;
  documents.reserve(frames.texts.size());
  for (const std::string_view text : frames.texts) documents.push_back(SVGDocument::parse(text, frames.storage, arena));
  arena->giveBackUnused();
  return documents;
}

}  // namespace quellaro
