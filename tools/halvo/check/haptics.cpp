#include "check/haptics.h"

#include <algorithm>

#include "assets/halvo_file_manager.h"
#include "platform/corehaptics/haptic_pattern.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

void tell(Report& report, FindingId id, std::string what) {
  report.add({id, std::move(what), kHapticsFile, std::nullopt, "", "", "", std::nullopt});
}

// As loadHapticPattern reads it, which does not tell what is wrong with the JSON.
Result<std::shared_ptr<const CHHapticPattern>> readPattern(std::string json) {
  const Result<JSONDocument> document = JSONDocument::parse(std::move(json));
  if (!document) return document.error();
  if (document->root().type() != JSONType::Object)
    return NSError{"halvo", 0, "an object was expected, but this is " + std::string(describe(document->root().type()))};
  return CHHapticPattern::initWithDictionary(document->root());
}

bool isFelt(const HapticCurve& curve) {
  return std::any_of(curve.samples.begin(), curve.samples.end(),
                     [](const HapticSample& sample) { return sample.intensity > 0; });
}

}  // namespace

std::shared_ptr<const CHHapticPattern> checkHaptics(const std::string& path, bool isSupported, Report& report) {
  if (!FileManager::fileExistsAtPath(path)) {
    if (isSupported) tell(report, FindingId::HapticsMissing, "isHapticsSupported is true, but there is no pattern");
    return nullptr;
  }
  auto json = FileManager::readAtPath(path);
  if (!json) {
    tell(report, FindingId::Unreadable, json.error().localizedDescription);
    return nullptr;
  }
  const auto pattern = readPattern(std::move(*json));
  if (!pattern) {
    tell(report, FindingId::HapticsPattern, pattern.error().localizedDescription);
    return nullptr;
  }
  const bool felt = isFelt((*pattern)->curve());
  if (isSupported && !felt) tell(report, FindingId::HapticsEmpty, "nothing in it can be felt");
  if (!isSupported && felt)
    tell(report, FindingId::HapticsUnused, "there is a pattern, but isHapticsSupported is not true");
  return isSupported && felt ? *pattern : nullptr;
}

}  // namespace halvo
