#include "import/art/dashes.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace halvo::art {

namespace {

constexpr double kMostDashes = 20000;
// A curve's length is that of so many chords.
constexpr int kChords = 32;

double lengthOf(const Cubic& curve, double from, double to) {
  double sum = 0;
  Point at = pointAt(curve, from);
  for (int i = 1; i <= kChords; ++i) {
    const Point next = pointAt(curve, from + (to - from) * i / kChords);
    sum += length(next - at);
    at = next;
  }
  return sum;
}

// The parameter at which so much of the curve lies between it and `from`.
double parameterAfter(const Cubic& curve, double from, double distance) {
  double low = from;
  double high = 1;
  for (int i = 0; i < 30; ++i) {
    const double middle = (low + high) / 2;
    (lengthOf(curve, from, middle) < distance ? low : high) = middle;
  }
  return (low + high) / 2;
}

class Dasher {
 public:
  Dasher(const std::vector<double>& dashes, double offset) : dashes_(dashes) {
    const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0) * (dashes.size() % 2 == 1 ? 2 : 1);
    offset = std::fmod(offset, period);
    if (offset < 0) offset += period;
    left_ = dashes_[0];
    // A dash of no length at the start is one all the same.
    while (offset > 0 && offset >= left_) {
      offset -= left_;
      advance();
    }
    left_ -= offset;
  }

  void walk(const Contour& contour, Outline& result) {
    if (isOn_) begin(contour.start);
    const bool startsOn = isOn_;
    Point at = contour.start;
    for (const Segment& segment : contour.segments) {
      along(at, segment, result);
      at = segment.end;
    }
    if (contour.isClosed && !(at == contour.start)) along(at, lineTo(contour.start), result);
    if (!isOn_) return;
    // The last dash of a ring goes on into the first.
    if (contour.isClosed && startsOn && !result.empty()) {
      Contour& first = result.front();
      current_.segments.insert(current_.segments.end(), first.segments.begin(), first.segments.end());
      first = std::move(current_);
    } else {
      result.push_back(std::move(current_));
    }
  }

 private:
  void begin(Point at) { current_ = {at, {}, false}; }

  void advance() {
    next_ = (next_ + 1) % dashes_.size();
    left_ = dashes_[next_];
    isOn_ = !isOn_;
  }

  void along(Point start, const Segment& segment, Outline& result) {
    const Cubic curve = curveOf(start, segment);
    const auto add = [&](double from, double to) {
      const Cubic part = partOf(curve, from, to);
      current_.segments.push_back(segment.isLine ? lineTo(part.p3) : curveTo(part.p1, part.p2, part.p3));
    };
    const double whole = segment.isLine ? length(segment.end - start) : 0;
    double from = 0;
    while (true) {
      const double rest = segment.isLine ? whole * (1 - from) : lengthOf(curve, from, 1);
      if (rest <= left_) {
        if (isOn_ && from < 1) add(from, 1);
        left_ -= rest;
        return;
      }
      const double to = segment.isLine ? from + left_ / whole : parameterAfter(curve, from, left_);
      if (isOn_) {
        add(from, to);
        result.push_back(std::move(current_));
      }
      from = to;
      advance();
      if (isOn_) begin(pointAt(curve, from));
    }
  }

  const std::vector<double>& dashes_;
  std::size_t next_ = 0;
  double left_ = 0;
  bool isOn_ = true;
  Contour current_;
};

}  // namespace

Outline dashed(const Outline& outline, const std::vector<double>& dashes, double offset) {
  const double sum = std::accumulate(dashes.begin(), dashes.end(), 0.0);
  if (!(sum > 0)) return outline;
  double whole = 0;
  for (const Contour& contour : outline) {
    Point at = contour.start;
    for (const Segment& segment : contour.segments) {
      whole += lengthOf(curveOf(at, segment), 0, 1);
      at = segment.end;
    }
  }
  if (!(whole / sum * static_cast<double>(dashes.size()) < kMostDashes)) return outline;
  Outline result;
  for (const Contour& contour : outline) {
    Outline own;
    Dasher(dashes, offset).walk(contour, own);
    for (Contour& dash : own) result.push_back(std::move(dash));
  }
  return result;
}

}  // namespace halvo::art
