#pragma once

#include <algorithm>

#include "platform/quartzcore/bitmap.h"

namespace halvo {

// Copies a picture onto a sheet, with its top left corner at that pixel; what would lie beyond the sheet's right or
// bottom edge is cut off.
inline void paste(const quellaro::Bitmap& picture, int left, int top, quellaro::Bitmap& sheet) {
  const int width = std::min(picture.width, sheet.width - left);
  const int height = std::min(picture.height, sheet.height - top);
  if (width <= 0) return;
  for (int row = 0; row < height; ++row) std::copy_n(picture.row(row), width, sheet.row(top + row) + left);
}

}  // namespace halvo
