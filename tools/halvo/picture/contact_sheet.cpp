#include "picture/contact_sheet.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "picture/paste.h"

namespace halvo {

using quellaro::Bitmap;

namespace {

constexpr std::size_t kPictures = 1000;
constexpr int kSide = 120;
constexpr int kGap = 4;
constexpr std::uint32_t kGround = 0xFF808080;

// The mean of each pixel's part of the picture.
Bitmap scaledDown(const Bitmap& picture, int width, int height) {
  Bitmap small(width, height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const int left = x * picture.width / width;
      const int right = std::max(left + 1, (x + 1) * picture.width / width);
      const int top = y * picture.height / height;
      const int bottom = std::max(top + 1, (y + 1) * picture.height / height);
      std::uint64_t sums[4] = {};
      for (int row = top; row < bottom; ++row)
        for (int column = left; column < right; ++column)
          for (int part = 0; part < 4; ++part) sums[part] += picture.row(row)[column] >> (8 * part) & 255;
      const auto count = static_cast<std::uint64_t>(right - left) * static_cast<std::uint64_t>(bottom - top);
      for (int part = 0; part < 4; ++part)
        small.row(y)[x] |= static_cast<std::uint32_t>((sums[part] + count / 2) / count) << (8 * part);
    }
  return small;
}

}  // namespace

void ContactSheet::add(const Bitmap& picture) {
  if (thumbnails_.size() == kPictures || picture.width < 1 || picture.height < 1) return;
  const double scale = std::min(1.0, static_cast<double>(kSide) / std::max(picture.width, picture.height));
  thumbnails_.push_back(scaledDown(picture, std::max(1, static_cast<int>(std::lround(picture.width * scale))),
                                   std::max(1, static_cast<int>(std::lround(picture.height * scale)))));
}

Bitmap ContactSheet::picture() const {
  const int count = static_cast<int>(thumbnails_.size());
  const int columns = std::clamp(static_cast<int>(std::ceil(std::sqrt(count * 1.5))), 1, 24);
  const int rows = (count + columns - 1) / columns;
  Bitmap sheet(columns * (kSide + kGap) + kGap, rows * (kSide + kGap) + kGap);
  std::fill(sheet.pixels.begin(), sheet.pixels.end(), kGround);
  for (int i = 0; i < count; ++i) {
    const Bitmap& thumbnail = thumbnails_[static_cast<std::size_t>(i)];
    const int left = kGap + i % columns * (kSide + kGap) + (kSide - thumbnail.width) / 2;
    const int top = kGap + i / columns * (kSide + kGap) + (kSide - thumbnail.height) / 2;
    paste(thumbnail, left, top, sheet);
  }
  return sheet;
}

}  // namespace halvo
