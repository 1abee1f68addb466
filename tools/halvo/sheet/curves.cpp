#include "sheet/curves.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "picture/page.h"

namespace halvo {

namespace {

// What the highest peak stays away from a lane's edges.
constexpr double kMargin = 4;

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

double CurveLane::columnOf(double seconds) const {
  const double share = std::clamp(seconds / duration, 0.0, 1.0);
  return left + share * (width - 1);
}

// The smallest of 1, 2, 5, 10, 20, ... (and of their tenths, ...) that is wide enough.
double tickStep(const CurveLane& lane, double room) {
  const double least = lane.duration * room / lane.width;
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double step : {1.0, 2.0, 5.0})
    if (step * power >= least) return step * power;
  return 10 * power;
}

SoundCurve soundCurve(const Waveform& sound, double start, const CurveLane& lane) {
  const double middle = lane.top + lane.height / 2;
  const double reach = lane.height / 2 - kMargin;
  const double secondsPerPixel = lane.duration / lane.width;
  const auto stepAt = [&](int column) {
    const double from = column * secondsPerPixel - start;
    return sound.between(from, from + secondsPerPixel);
  };
  const auto height = [reach](float value) { return reach * std::clamp(static_cast<double>(value), -1.0, 1.0); };
  // At least a hair line, so that silence can be told from no sound.
  constexpr double kHair = 0.5;
  const int columns = static_cast<int>(lane.width);
  return {area(lane.left, columns,
               [&](int column) {
                 const Waveform::Step step = stepAt(column);
                 return std::pair(middle - height(step.high) - kHair, middle - height(step.low) + kHair);
               }),
          area(lane.left, columns, [&](int column) {
            const double loud = height(stepAt(column).loudness);
            return std::pair(middle - loud, middle + loud);
          })};
}

HapticCurvePaths hapticPaths(const quellaro::HapticCurve& curve, const CurveLane& lane) {
  const double reach = lane.height - kMargin;
  HapticCurvePaths paths;
  appendPoint(paths.strength, "M", lane.left, lane.bottom());
  bool isFelt = false;
  for (std::size_t i = 0; i < curve.samples.size(); ++i) {
    const auto& sample = curve.samples[i];
    const double left = lane.columnOf(quellaro::HapticCurve::timeOf(i));
    const double right = lane.columnOf(quellaro::HapticCurve::timeOf(i + 1));
    const double top = lane.bottom() - reach * sample.intensity;
    appendPoint(paths.strength, "L", left, top);
    appendPoint(paths.strength, "L", right, top);
    const double sharp = lane.bottom() - reach * sample.sharpness;
    if (sample.intensity > 0) {
      appendPoint(paths.sharpness, isFelt ? "L" : "M", left, sharp);
      appendPoint(paths.sharpness, "L", right, sharp);
    }
    isFelt = sample.intensity > 0;
  }
  appendPoint(paths.strength, "L", lane.columnOf(curve.duration()), lane.bottom());
  paths.strength += "Z";
  return paths;
}

}  // namespace halvo
