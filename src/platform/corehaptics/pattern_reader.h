#pragma once

#include "platform/corehaptics/pattern_content.h"
#include "platform/foundation/json/json_reader.h"

namespace quellaro {

// Reads the dictionary of an AHAP document. docs/haptics.md lists what it may hold; for anything else the error names
// the entry and the key ("At Pattern[3].Event.Time: ...").
Result<HapticPatternContent> readHapticPattern(const JSONValue& dictionary);

}  // namespace quellaro
