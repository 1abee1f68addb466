#include "preview/preview_layout.h"

#include <algorithm>
#include <cmath>

namespace halvo {

namespace {

// In units of the desktop.
constexpr double kMargin = 12;
constexpr double kGap = 8;
constexpr double kText = 9;
constexpr double kSound = 48;
constexpr double kHaptics = 26;
constexpr double kMarks = 9;
constexpr double kAxis = 8;
// However small the window is, most of it is the picture's.
constexpr double kMostOfWindow = 0.5;

}  // namespace

double PreviewLayout::secondsAt(double x) const {
  if (axis.width <= 1) return 0;
  return std::clamp((x - axis.left) / (axis.width - 1), 0.0, 1.0) * axis.duration;
}

PreviewLayout layOutPreview(int width, int height, double scale, const PreviewLanes& lanes) {
  PreviewLayout layout;
  layout.width = width;
  layout.height = height;
  layout.scale = scale;
  const double left = std::round(kMargin * scale);
  const double room = std::max(1.0, width - 2 * left);
  double bottom = std::round(kGap * scale);
  layout.textTop = bottom;
  layout.textHeight = kText * scale;
  bottom += layout.textHeight;
  const auto place = [&](CurveLane& lane, double laneHeight, bool isThere, double gap) {
    if (!isThere) return;
    lane = {left, std::round(bottom + gap * scale), room, std::round(laneHeight * scale), lanes.duration};
    bottom = lane.bottom();
  };
  place(layout.sound, kSound, lanes.sound, kGap);
  place(layout.haptics, kHaptics, lanes.haptics, kGap / 2);
  place(layout.marks, kMarks, true, lanes.sound || lanes.haptics ? kGap / 4 : kGap);
  place(layout.axis, kAxis, true, kGap / 2);
  const double wanted = std::round(bottom + kGap * scale);
  const int strip = static_cast<int>(std::min(wanted, std::floor(height * kMostOfWindow)));
  layout.stage = {0, 0, width, height - strip};
  layout.strip = {0, height - strip, width, strip};
  return layout;
}

}  // namespace halvo
