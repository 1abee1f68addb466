#include "platform/foundation/xml/xml_attributes.h"

#include <set>

namespace quellaro {

namespace {

// Up to here comparing each with each is fastest.
constexpr std::size_t kFewAttributes = 16;

}  // namespace

std::string_view repeatedName(std::span<const XMLAttribute> attributes) {
  if (attributes.size() <= kFewAttributes) {
    for (auto one = attributes.begin(); one != attributes.end(); ++one)
      for (auto other = attributes.begin(); other != one; ++other)
        if (one->name == other->name) return one->name;
    return {};
  }
  std::set<std::string_view> names;
  for (const XMLAttribute& attribute : attributes)
    if (!names.insert(attribute.name).second) return attribute.name;
  return {};
}

}  // namespace quellaro
