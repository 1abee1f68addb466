#pragma once

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

namespace quellaro {

// Keeps texts for as long as it lives, and where they are even when it is moved.
class TextStorage {
 public:
  std::string_view keep(std::string_view text) {
    texts_.push_back(std::make_unique<char[]>(text.size()));
    std::copy(text.begin(), text.end(), texts_.back().get());
    return {texts_.back().get(), text.size()};
  }

 private:
  std::vector<std::unique_ptr<char[]>> texts_;
};

}  // namespace quellaro
