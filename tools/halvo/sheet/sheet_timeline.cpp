#include <algorithm>
#include <cmath>

#include "sheet/sheet_drawing.h"

namespace halvo {

namespace {

// Ticks no closer than this, in pixels, so that their labels stay apart.
constexpr double kTickRoom = 76;
constexpr double kTickLabel = 8.5;

// Seconds: sums of frame times are not exact.
constexpr double kRounding = 1e-9;

// The smallest of 1, 2, 5, 10, 20, ... (and of their tenths, ...) that is not below `least`.
double roundStep(double least) {
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double step : {1.0, 2.0, 5.0})
    if (step * power >= least) return step * power;
  return 10 * power;
}

void appendPoint(std::string& path, const char* command, double x, double y) {
  path += command;
  appendNumber(path, x);
  path += ' ';
  appendNumber(path, y);
}

// An area with an upper and a lower edge over neighbouring columns of pixels.
template <class Edges>
std::string area(double left, int columns, Edges edges) {
  std::string path;
  for (int i = 0; i < columns; ++i) appendPoint(path, i == 0 ? "M" : "L", left + i + 0.5, edges(i).first);
  for (int i = columns - 1; i >= 0; --i) appendPoint(path, "L", left + i + 0.5, edges(i).second);
  return path + "Z";
}

}  // namespace

double SheetDrawing::columnOf(double seconds) const {
  const double share = std::clamp(seconds / duration_, 0.0, 1.0);
  return layout_.left + share * (layout_.contentWidth - 1);
}

void SheetDrawing::drawAxis() {
  if (layout_.axis.height == 0) return;
  drawLane(layout_.film, "frames");
  drawLane(layout_.sound, "sound");
  drawLane(layout_.haptics, "haptics");
  const double step = roundStep(duration_ * kTickRoom / layout_.contentWidth);
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
  const SheetLayout::Lane& lane = layout_.sound;
  if (lane.height == 0) return;
  const double middle = lane.top + lane.height / 2;
  const double reach = lane.height / 2 - 4;
  const auto stepAt = [this](int column) {
    const double start = column * secondsPerPixel() - source_.soundStart;
    return source_.sound->between(start, start + secondsPerPixel());
  };
  const auto height = [reach](float value) { return reach * std::clamp(static_cast<double>(value), -1.0, 1.0); };
  // At least a hair line, so that silence can be told from no sound.
  constexpr double kHair = 0.5;
  const int columns = static_cast<int>(layout_.contentWidth);
  page_.path(area(layout_.left, columns,
                  [&](int column) {
                    const Waveform::Step step = stepAt(column);
                    return std::pair(middle - height(step.high) - kHair, middle - height(step.low) + kHair);
                  }),
             palette_.sound);
  page_.path(area(layout_.left, columns,
                  [&](int column) {
                    const double loud = height(stepAt(column).loudness);
                    return std::pair(middle - loud, middle + loud);
                  }),
             palette_.soundCore);
}

// Strength as an area, sharpness as a line over what is felt.
void SheetDrawing::drawHaptics() {
  const SheetLayout::Lane& lane = layout_.haptics;
  if (lane.height == 0) return;
  const double reach = lane.height - 4;
  std::string strength;
  std::string sharpness;
  appendPoint(strength, "M", layout_.left, lane.bottom());
  bool isFelt = false;
  for (std::size_t i = 0; i < source_.haptics->samples.size(); ++i) {
    const auto& sample = source_.haptics->samples[i];
    const double left = columnOf(quellaro::HapticCurve::timeOf(i));
    const double right = columnOf(quellaro::HapticCurve::timeOf(i + 1));
    const double top = lane.bottom() - reach * sample.intensity;
    appendPoint(strength, "L", left, top);
    appendPoint(strength, "L", right, top);
    const double sharp = lane.bottom() - reach * sample.sharpness;
    if (sample.intensity > 0) {
      appendPoint(sharpness, isFelt ? "L" : "M", left, sharp);
      appendPoint(sharpness, "L", right, sharp);
    }
    isFelt = sample.intensity > 0;
  }
  appendPoint(strength, "L", columnOf(source_.haptics->duration()), lane.bottom());
  page_.path(strength + "Z", palette_.haptics);
  page_.path(sharpness, palette_.sharpness, 1.5);
}

}  // namespace halvo
