#pragma once

#include <atomic>
#include <cstddef>

#include "platform/foundation/memory/limits.h"

namespace quellaro {

// What the documents of one cue may hold together. Every frame counts as an element, too. Any thread may take.
class SVGBudget {
 public:
  void takeElement(std::size_t attributes) {
    take(elements_, 1, limits::kCueElements, "elements");
    take(attributes_, attributes, limits::kCueAttributes, "attributes");
  }
  void takePoints(std::size_t points) { take(points_, points, limits::kCuePoints, "points"); }

  // What there is too much of; null while there is enough.
  const char* exceeded() const { return exceeded_.load(std::memory_order_relaxed); }

 private:
  void take(std::atomic<std::size_t>& taken, std::size_t count, std::size_t limit, const char* name) {
    if (count > limit || taken.fetch_add(count, std::memory_order_relaxed) > limit - count)
      exceeded_.store(name, std::memory_order_relaxed);
  }

  std::atomic<std::size_t> elements_ = 0;
  std::atomic<std::size_t> attributes_ = 0;
  std::atomic<std::size_t> points_ = 0;
  std::atomic<const char*> exceeded_ = nullptr;
};

}  // namespace quellaro
