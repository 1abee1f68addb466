#include "platform/foundation/notification_center.h"

#include <vector>

namespace quellaro {

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
  // Never destroyed: a sound may end while the process exits.
  static NSNotificationCenter& center = *new NSNotificationCenter;  // NOLINT(cppcoreguidelines-owning-memory)
  return center;
}

NSNotificationCenter::Token NSNotificationCenter::addObserver(const std::string& name, Observer observer) {
  const std::lock_guard lock(mutex_);
  observers_.emplace(nextToken_, std::pair(name, std::move(observer)));
  return nextToken_++;
}

void NSNotificationCenter::removeObserver(Token token) {
  const std::lock_guard lock(mutex_);
  observers_.erase(token);
}

void NSNotificationCenter::post(const std::string& name) {
  std::vector<Observer> interested;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [token, observer] : observers_)
      if (observer.first == name) interested.push_back(observer.second);
  }
  // Outside the lock: an observer may remove itself, or add others.
  for (const Observer& observer : interested) observer(name);
}

}  // namespace quellaro
