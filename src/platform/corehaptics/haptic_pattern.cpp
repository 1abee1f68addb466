#include "platform/corehaptics/haptic_pattern.h"

#include "platform/corehaptics/pattern_reader.h"
#include "platform/corehaptics/pattern_sampler.h"

namespace quellaro {

Result<std::shared_ptr<const CHHapticPattern>> CHHapticPattern::initWithDictionary(const JSONValue& dictionary) {
  const Result<HapticPatternContent> content = readHapticPattern(dictionary);
  if (!content) return content.error();
  return std::make_shared<const CHHapticPattern>(sampleHapticPattern(*content));
}

}  // namespace quellaro
