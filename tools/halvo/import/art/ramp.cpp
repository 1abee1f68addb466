#include "import/art/ramp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace halvo::art {

namespace {

constexpr double kMostPeriods = 200;

void addPeriod(const std::vector<GradientStop>& stops, double start, bool isMirrored, std::vector<RampPoint>& ramp) {
  const auto at = [&](double offset) { return isMirrored ? start + 1 - offset : start + offset; };
  std::vector<RampPoint> period{{at(0), stops.front().colour}};
  for (const GradientStop& stop : stops) period.push_back({at(stop.offset), stop.colour});
  period.push_back({at(1), stops.back().colour});
  if (isMirrored) std::reverse(period.begin(), period.end());
  ramp.insert(ramp.end(), period.begin(), period.end());
}

// Cuts off what lies outside, so that the first and the last point are where it begins and ends.
std::vector<RampPoint> within(const std::vector<RampPoint>& ramp, const Stretch& shown) {
  std::vector<RampPoint> result;
  for (std::size_t i = 0; i + 1 < ramp.size(); ++i) {
    const RampPoint& a = ramp[i];
    const RampPoint& b = ramp[i + 1];
    if (b.t < shown.from || a.t > shown.to || a.t == b.t) continue;
    const double from = std::max(a.t, shown.from);
    const double to = std::min(b.t, shown.to);
    if (!(from < to)) continue;
    result.push_back({from, between(a.colour, b.colour, (from - a.t) / (b.t - a.t))});
    result.push_back({to, between(a.colour, b.colour, (to - a.t) / (b.t - a.t))});
  }
  return result;
}

// What lets so little through is laid in bands: where veils meet an outline's edge, they make it harder than one does.
constexpr double kOpaque = 0.97;

// A line of the ramp where it becomes opaque, or ceases to be.
std::vector<std::pair<RampPoint, RampPoint>> split(const RampPoint& a, const RampPoint& b) {
  if ((a.colour.alpha < kOpaque) == (b.colour.alpha < kOpaque)) return {{a, b}};
  const double s = (kOpaque - a.colour.alpha) / (b.colour.alpha - a.colour.alpha);
  const RampPoint middle{a.t + (b.t - a.t) * s, between(a.colour, b.colour, s)};
  return {{a, middle}, {middle, b}};
}

}  // namespace

Colour between(const Colour& a, const Colour& b, double s) {
  const auto mix = [s](double x, double y) { return x + (y - x) * s; };
  return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue), mix(a.alpha, b.alpha)};
}

double distance(const Colour& a, const Colour& b) {
  return 255 * std::max({std::fabs(a.red - b.red), std::fabs(a.green - b.green), std::fabs(a.blue - b.blue)});
}

std::optional<std::vector<RampPoint>> rampOf(const Gradient& gradient, const Stretch& shown) {
  const std::vector<GradientStop>& stops = gradient.stops;
  std::vector<RampPoint> ramp;
  if (gradient.spread == Spread::Repeat || gradient.spread == Spread::Reflect) {
    if (!(shown.to - shown.from < kMostPeriods)) return std::nullopt;
    for (double period = std::floor(shown.from); period <= shown.to; ++period)
      addPeriod(stops, period, gradient.spread == Spread::Reflect && std::fmod(std::fabs(period), 2) == 1, ramp);
  } else {
    ramp.push_back({std::min(shown.from, stops.front().offset) - 1, stops.front().colour});
    for (const GradientStop& stop : stops) ramp.push_back({stop.offset, stop.colour});
    ramp.push_back({std::max(shown.to, stops.back().offset) + 1, stops.back().colour});
  }
  return within(ramp, shown);
}

RampParts partsOf(const std::vector<RampPoint>& ramp, double overlap) {
  RampParts parts;
  const auto addSheer = [&](const RampPoint& a, const RampPoint& b) {
    if (a.t < b.t) parts.sheer.insert(parts.sheer.end(), {a, b});
  };
  const auto endOpaque = [&] {
    if (parts.opaque.empty() || parts.opaque.back().empty()) return;
    const RampPoint last = parts.opaque.back().back();
    addSheer({last.t - overlap, last.colour}, last);
    parts.opaque.emplace_back();
  };
  for (std::size_t i = 0; i + 1 < ramp.size(); i += 2) {
    for (const auto& [a, b] : split(ramp[i], ramp[i + 1])) {
      if (std::min(a.colour.alpha, b.colour.alpha) < kOpaque - 1e-9) {
        endOpaque();
        addSheer(a, b);
        continue;
      }
      if (parts.opaque.empty()) parts.opaque.emplace_back();
      if (parts.opaque.back().empty() && a.t > ramp.front().t) addSheer(a, {a.t + overlap, a.colour});
      parts.opaque.back().insert(parts.opaque.back().end(), {a, b});
    }
  }
  std::erase_if(parts.opaque, [](const auto& part) { return part.empty(); });
  return parts;
}

std::vector<Band> bandsOf(const std::vector<RampPoint>& ramp, const Fineness& fineness) {
  const auto countOf = [&](const RampPoint& a, const RampPoint& b, double share) {
    const double wanted = distance(a.colour, b.colour) / fineness.step * share;
    return std::max(1.0, std::ceil(std::min(wanted, (b.t - a.t) * fineness.mostPerUnit)));
  };
  double all = 0;
  for (std::size_t i = 0; i + 1 < ramp.size(); i += 2) all += countOf(ramp[i], ramp[i + 1], 1);
  const double share = all > fineness.most ? fineness.most / all : 1;
  std::vector<Band> bands;
  for (std::size_t i = 0; i + 1 < ramp.size(); i += 2) {
    const RampPoint& a = ramp[i];
    const RampPoint& b = ramp[i + 1];
    const double count = countOf(a, b, share);
    for (double k = 0; k < count; ++k) {
      const Band band{{a.t + (b.t - a.t) * k / count, a.t + (b.t - a.t) * (k + 1) / count},
                      between(a.colour, b.colour, (k + 0.5) / count)};
      if (!bands.empty() && distance(bands.back().colour, band.colour) < 0.5)
        bands.back().where.to = band.where.to;
      else
        bands.push_back(band);
    }
  }
  return bands;
}

}  // namespace halvo::art
