#pragma once

#include <cmath>
#include <map>
#include <optional>
#include <string>

#include "platform/coregraphics/geometry.h"

namespace quellaro {

// Where a view or a layer lies in the one around it.
inline constexpr const char* kFrameKey = "UIFrame";

// The archive that views and layers are written to and made from: rectangles under names.
class NSCoder {
 public:
  void encodeCGRect(CGRect rect, const std::string& key) { rects_[key] = rect; }
  // Nothing when the archive has none under this name, or one that is not made of finite numbers.
  std::optional<CGRect> decodeCGRectForKey(const std::string& key) const {
    const auto found = rects_.find(key);
    if (found == rects_.end()) return std::nullopt;
    const CGRect& rect = found->second;
    for (const double number : {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height})
      if (!std::isfinite(number)) return std::nullopt;
    return rect;
  }

 private:
  std::map<std::string, CGRect> rects_;
};

}  // namespace quellaro
