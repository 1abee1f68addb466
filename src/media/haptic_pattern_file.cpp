#include "media/haptic_pattern_file.h"

#include <optional>
#include <utility>

#include "media/haptics_feedback_error.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

Result<std::shared_ptr<const CHHapticPattern>> loadHapticPattern(const std::string& path) {
  std::optional<std::string> contents = FileManager::contentsAtPath(path);
  if (!contents) return errorOf(HapticsFeedbackError::invalidAHAPFile);
  const Result<JSONDocument> document = JSONDocument::parse(std::move(*contents));
  if (!document || document->root().type() != JSONType::Object) return errorOf(HapticsFeedbackError::invalidAHAPFile);
  return CHHapticPattern::initWithDictionary(document->root());
}

}  // namespace quellaro
