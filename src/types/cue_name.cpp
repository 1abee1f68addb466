#include "types/cue_name.h"

#include "platform/foundation/text/utf8.h"

namespace quellaro {

std::string normalisedCueName(std::string_view name) {
  std::string result = repairedUTF8(name);
  std::erase_if(result, [](char c) { return c == '_' || c == '-' || c == ' '; });
  return lowercased(result);
}

}  // namespace quellaro
