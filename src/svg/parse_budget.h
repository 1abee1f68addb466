#pragma once

#include <cstddef>

#include "platform/foundation/memory/limits.h"

namespace quellaro {

// What the documents of one cue may still hold. Every frame counts as an element, too.
class SVGBudget {
 public:
  void takeElement(std::size_t attributes) {
    take(elements_, 1, "elements");
    take(attributes_, attributes, "attributes");
  }
  void takePoints(std::size_t points) { take(points_, points, "points"); }

  // What there is too much of; null while there is enough.
  const char* exceeded() const { return exceeded_; }

 private:
  void take(std::size_t& left, std::size_t count, const char* name) {
    if (count > left) exceeded_ = name;
    left -= count > left ? left : count;
  }

  std::size_t elements_ = limits::kCueElements;
  std::size_t attributes_ = limits::kCueAttributes;
  std::size_t points_ = limits::kCuePoints;
  const char* exceeded_ = nullptr;
};

}  // namespace quellaro
