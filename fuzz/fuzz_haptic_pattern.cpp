// Any document either is a pattern whose curve keeps its bounds, or is refused with a reason.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/corehaptics/haptic_pattern.h"
#include "platform/foundation/memory/limits.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quellaro;
  const auto document = JSONDocument::parse(std::string(reinterpret_cast<const char*>(data), size));
  if (!document) return 0;
  const auto pattern = CHHapticPattern::initWithDictionary(document->root());
  if (!pattern) {
    if (pattern.error().localizedDescription.empty()) std::abort();
    return 0;
  }
  if ((*pattern)->duration() > limits::kHapticSeconds) std::abort();
  for (const HapticSample& sample : (*pattern)->curve().samples)
    if (!(sample.intensity >= 0 && sample.intensity <= 1 && sample.sharpness >= 0 && sample.sharpness <= 1))
      std::abort();
  return 0;
}
