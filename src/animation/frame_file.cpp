#include "animation/frame_file.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"
#include "svg/parse_budget.h"

namespace quellaro {

Result<FrameTexts> readFrameFile(const std::string& path) {
  try {
    auto bytes = FileManager::readAtPath(path, limits::kCueBytes);
    if (!bytes) return bytes.error();
    return decodeFrames(std::move(*bytes));
  } catch (const std::bad_alloc&) {
    return posixError(ENOMEM);
  }
}

Result<FrameTexts> decodeFrames(std::string bytes) {
  if (bytes.size() > limits::kCueBytes) return posixError(EFBIG);
  auto document = JSONDocument::parse(std::move(bytes));
  if (!document) return document.error();
  auto strings = std::move(*document).takeStrings();
  if (!strings) return FrameTexts();
  if (strings->strings.size() > limits::kFrames)
    return NSError{"NSCocoaErrorDomain", 0, "More than " + std::to_string(limits::kFrames) + " frames"};
  return FrameTexts{std::move(strings->storage), std::move(strings->strings), std::move(strings->spent)};
}

Result<std::vector<std::shared_ptr<const SVGDocument>>> parseFrames(FrameTexts frames) {
  try {
    const auto arena = std::make_shared<Arena>(std::move(frames.spent));
    std::vector<std::shared_ptr<const SVGDocument>> documents;
    documents.reserve(frames.texts.size());
    SVGBudget budget;
    for (const std::string_view text : frames.texts) {
      budget.takeElement(0);
      documents.push_back(SVGDocument::parse(text, frames.storage, arena, nullptr, &budget));
      if (budget.exceeded() != nullptr)
        return NSError{"NSCocoaErrorDomain", 0,
                       "Up to Frame_" + std::to_string(documents.size()) + " there are more " + budget.exceeded() +
                           " than a cue may have"};
    }
    arena->giveBackUnused();
    return documents;
  } catch (const std::bad_alloc&) {
    return posixError(ENOMEM);
  }
}

}  // namespace quellaro
