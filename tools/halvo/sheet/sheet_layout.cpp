#include "sheet/sheet_layout.h"

#include <algorithm>
#include <cmath>

namespace halvo {

namespace {

constexpr double kGap = 10;
constexpr double kLabelRoom = 24;
constexpr double kWidestContent = 1536;
constexpr double kNarrowestContent = 420;
constexpr int kSmallestSide = 84;
constexpr int kLargestSide = 300;
// So many of the largest stand side by side.
constexpr std::size_t kColumnsOfLargest = 5;
// Thumbnails get smaller until the grid is no higher than this, or they have reached the smallest side.
constexpr double kGridHeight = 960;
// Beyond these only every second, third, ... frame is shown: fifteen a row are 5000 pixels high.
constexpr std::size_t kMostThumbnails = 600;
constexpr double kHeaderRoom = 40;

constexpr double kAxisHeight = 26;
constexpr double kFilmHeight = 64;
constexpr double kSoundHeight = 120;
constexpr double kHapticsHeight = 72;
constexpr double kMomentsHeight = 48;
constexpr double kLaneGap = 26;  // has the name of the lane below it
constexpr double kAxisOverlap = 4;

double rowsOf(const SheetLayout& layout) {
  return std::ceil(static_cast<double>(layout.thumbnails) / static_cast<double>(layout.columns));
}

double gridHeight(const SheetLayout& layout) { return rowsOf(layout) * (layout.side + kLabelRoom + kGap) - kGap; }

void chooseColumns(SheetLayout& layout) {
  for (layout.columns = std::min(kColumnsOfLargest, layout.thumbnails); layout.columns <= layout.thumbnails;
       ++layout.columns) {
    const auto columns = static_cast<double>(layout.columns);
    const double room = (kWidestContent - (columns - 1) * kGap) / columns;
    layout.side = std::clamp(static_cast<int>(room), kSmallestSide, kLargestSide);
    if (gridHeight(layout) <= kGridHeight || room - kGap < kSmallestSide + 1) return;
  }
  layout.columns = layout.thumbnails;
}

}  // namespace

double SheetLayout::cellLeft(std::size_t thumbnail) const {
  return left + std::floor(static_cast<double>(thumbnail % columns) * pitch);
}

double SheetLayout::cellTop(std::size_t thumbnail) const {
  const std::size_t row = thumbnail / columns;
  return gridTop + static_cast<double>(row) * (side + kLabelRoom + kGap);
}

SheetLayout layOut(std::size_t frames, bool isTimed, bool hasFilm, bool hasSound, bool hasHaptics, bool hasMoments) {
  SheetLayout layout;
  layout.left = kMargin;
  layout.gridTop = kMargin + kHeaderRoom;
  layout.step = (frames + kMostThumbnails - 1) / kMostThumbnails;
  layout.thumbnails = (frames + layout.step - 1) / layout.step;
  chooseColumns(layout);
  layout.labelHeight = layout.side < 100 ? 7.5 : 8.5;
  const double gridWidth = static_cast<double>(layout.columns) * (layout.side + kGap) - kGap;
  layout.contentWidth = std::max(isTimed ? kWidestContent : kNarrowestContent, gridWidth);
  // Full rows reach to the right edge.
  layout.pitch = layout.side + kGap;
  if (layout.columns > 1 && layout.contentWidth - gridWidth < layout.side)
    layout.pitch = (layout.contentWidth - layout.side) / static_cast<double>(layout.columns - 1);

  double bottom = layout.gridTop + gridHeight(layout);
  if (isTimed) {
    layout.axis = {bottom + kLaneGap, kAxisHeight};
    bottom = layout.axis.bottom() - kAxisOverlap;
    const auto place = [&bottom](SheetLayout::Lane& lane, double height) {
      lane = {bottom + kLaneGap, height};
      bottom = lane.bottom();
    };
    if (hasMoments) place(layout.moments, kMomentsHeight);
    if (hasFilm) place(layout.film, kFilmHeight);
    if (hasSound) place(layout.sound, kSoundHeight);
    if (hasHaptics) place(layout.haptics, kHapticsHeight);
  }
  layout.width = static_cast<int>(std::ceil(layout.contentWidth + 2 * kMargin));
  layout.height = static_cast<int>(std::ceil(bottom + kMargin));
  return layout;
}

}  // namespace halvo
