#include <algorithm>
#include <cmath>

#include "sheet/curves.h"
#include "sheet/sheet_drawing.h"

namespace halvo {

namespace {

// Ticks no closer than this, in pixels, so that their labels stay apart.
constexpr double kTickRoom = 76;
constexpr double kTickLabel = 8.5;

// Seconds: sums of frame times are not exact.
constexpr double kRounding = 1e-9;

}  // namespace

CurveLane SheetDrawing::curveLane(const SheetLayout::Lane& lane) const {
  return {layout_.left, lane.top, layout_.contentWidth, lane.height, duration_};
}

double SheetDrawing::columnOf(double seconds) const { return curveLane({}).columnOf(seconds); }

void SheetDrawing::drawAxis() {
  if (layout_.axis.height == 0) return;
  drawLane(layout_.film, "frames");
  drawLane(layout_.sound, "sound");
  drawLane(layout_.haptics, "haptics");
  const double step = tickStep(curveLane(layout_.axis), kTickRoom);
  const int digits = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9);
  const double bottom =
      std::max({layout_.axis.bottom(), layout_.film.bottom(), layout_.sound.bottom(), layout_.haptics.bottom()});
  page_.horizontalLine(layout_.axis.bottom() - 6, layout_.left, right(), palette_.line);
  const int ticks = static_cast<int>(duration_ / step + 1e-6);
  for (int tick = 0; tick <= ticks; ++tick) {
    const double x = columnOf(tick * step);
    page_.verticalLine(x, layout_.axis.bottom() - 10, bottom, palette_.line);
    const bool isLast = x + kTickRoom / 2 > right();
    page_.text({tick == 0 ? layout_.left : std::min(x, right()), layout_.axis.top}, kTickLabel,
               fixedNumber(tick * step, digits) + (tick == 0 ? " s" : ""), palette_.faint,
               tick == 0 ? Page::Align::Left
               : isLast  ? Page::Align::Right
                         : Page::Align::Middle);
  }
}

void SheetDrawing::drawLane(const SheetLayout::Lane& lane, std::string_view name) {
  if (lane.height == 0) return;
  page_.text({layout_.left, lane.top - 13}, kTickLabel, name, palette_.text);
  page_.rectangle({{layout_.left, lane.top}, {layout_.contentWidth, lane.height}}, palette_.lane);
}

// What is seen at a time, at that time; and below it where each frame begins.
void SheetDrawing::drawFilm() {
  const SheetLayout::Lane& lane = layout_.film;
  if (lane.height == 0) return;
  constexpr double kTicks = 8;
  const int side = static_cast<int>(lane.height - kTicks);
  const int cells = static_cast<int>(layout_.contentWidth) / side;
  for (int cell = 0; cell < cells; ++cell) {
    const double offset = std::floor(cell * layout_.contentWidth / cells);
    if (const auto frame = source_.times->frameAt(offset * secondsPerPixel() + kRounding))
      drawFrame(*frame, layout_.left + offset, lane.top, side);
  }
  double previous = -1;
  for (const auto& start : source_.times->starts) {
    const double x = start ? std::floor(columnOf(*start)) : previous;
    if (x != previous) page_.verticalLine(x, lane.bottom() - kTicks + 2, lane.bottom(), palette_.text);
    previous = x;
  }
}

void SheetDrawing::drawSound() {
  if (layout_.sound.height == 0) return;
  const SoundCurve curve = soundCurve(*source_.sound, source_.soundStart, curveLane(layout_.sound));
  page_.path(curve.peaks, palette_.sound);
  page_.path(curve.loudness, palette_.soundCore);
}

void SheetDrawing::drawHaptics() {
  if (layout_.haptics.height == 0) return;
  const HapticCurvePaths curve = hapticPaths(*source_.haptics, curveLane(layout_.haptics));
  page_.path(curve.strength, palette_.haptics);
  page_.path(curve.sharpness, palette_.sharpness, 1.5);
}

}  // namespace halvo
