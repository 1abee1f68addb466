#include "animation/frame_file.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/file_manager.h"
#include "platform/foundation/json_reader.h"
#include "platform/foundation/limits.h"

namespace quellaro {

namespace {

// Of the arena: outlines take about as much memory as their text. Only what is used becomes real memory.
constexpr std::size_t kSmallestBlock = std::size_t{1} << 12;
constexpr std::size_t kLargestBlock = std::size_t{64} << 20;

}  // namespace

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
  return FrameTexts{std::move(strings->storage), std::move(strings->strings)};
}

std::vector<std::shared_ptr<const SVGDocument>> parseFrames(const FrameTexts& frames) {
  std::size_t size = 0;
  for (const std::string_view text : frames.texts) size += text.size();
  const auto arena = std::make_shared<Arena>(std::clamp(size, kSmallestBlock, kLargestBlock));
  std::vector<std::shared_ptr<const SVGDocument>> documents;
  documents.reserve(frames.texts.size());
  for (const std::string_view text : frames.texts) documents.push_back(SVGDocument::parse(text, frames.storage, arena));
  return documents;
}

}  // namespace quellaro
