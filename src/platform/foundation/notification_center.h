#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "platform/dispatch/function.h"

namespace quellaro {

// Tells whoever asked that something has happened. Observers run inside post(), on the thread that posts. Any thread.
class NSNotificationCenter {
 public:
  using Observer = Function<void(const std::string& name)>;
  using Token = std::uint64_t;

  static NSNotificationCenter& defaultCenter();

  Token addObserver(const std::string& name, Observer observer);
  // An observer that is running on another thread may still finish. Unknown tokens are ignored.
  void removeObserver(Token token);
  // Without an object.
  void post(const std::string& name);

 private:
  std::mutex mutex_;
  Token nextToken_ = 1;
  std::map<Token, std::pair<std::string, Observer>> observers_;
};

}  // namespace quellaro
