#include "quartzcore/brute_force.h"

#include <algorithm>
#include <cmath>

namespace quellaro {

namespace {

constexpr int kSamples = 16;  // along each side of a pixel
constexpr double kMiterLimit = 10;

struct Crossing {
  double x;
  int winding;
};

std::vector<Crossing> crossingsAt(const Contours& contours, double y) {
  std::vector<Crossing> found;
  for (const auto& contour : contours)
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const CGPoint a = contour[i];
      const CGPoint b = contour[(i + 1) % contour.size()];
      if ((a.y <= y) != (b.y <= y)) found.push_back({a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), a.y <= y ? 1 : -1});
    }
  std::sort(found.begin(), found.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
  return found;
}

// The same shape turning the one way that all pieces turn.
std::vector<CGPoint> turned(std::vector<CGPoint> piece) {
  double area = 0;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const CGPoint a = piece[i];
    const CGPoint b = piece[(i + 1) % piece.size()];
    area += a.x * b.y - a.y * b.x;
  }
  if (area < 0) std::reverse(piece.begin(), piece.end());
  return piece;
}

}  // namespace

Bitmap bruteForce(const Contours& contours, int width, int height) {
  Bitmap bitmap(width, height);
  std::vector<int> hits(static_cast<std::size_t>(width));
  for (int y = 0; y < height; ++y) {
    std::fill(hits.begin(), hits.end(), 0);
    for (int line = 0; line < kSamples; ++line) {
      const auto crossings = crossingsAt(contours, y + (line + 0.5) / kSamples);
      int winding = 0;
      for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
        winding += crossings[i].winding;
        if (winding == 0) continue;
        const auto sampleFrom = [&](double x) {
          return static_cast<int>(std::clamp(std::ceil(x * kSamples - 0.5), 0.0, double{kSamples} * width));
        };
        for (int s = sampleFrom(crossings[i].x); s < sampleFrom(crossings[i + 1].x); ++s)
          ++hits[static_cast<std::size_t>(s / kSamples)];
      }
    }
    for (int x = 0; x < width; ++x) {
      const int covered = (hits[static_cast<std::size_t>(x)] * 255 + 128) / (kSamples * kSamples);
      bitmap.row(y)[x] = static_cast<std::uint32_t>(covered) * 0x01010101;
    }
  }
  return bitmap;
}

Contours strokePieces(const Contours& lines, double width) {
  Contours pieces;
  for (const auto& line : lines) {
    CGPoint before;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
      const CGPoint a = line[i];
      const CGPoint b = line[i + 1];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      const CGPoint n{-(b.y - a.y) / length * width / 2, (b.x - a.x) / length * width / 2};
      pieces.push_back(
          turned({{a.x + n.x, a.y + n.y}, {b.x + n.x, b.y + n.y}, {b.x - n.x, b.y - n.y}, {a.x - n.x, a.y - n.y}}));
      if (i > 0) {
        const double side = before.x * n.y - before.y * n.x > 0 ? -1 : 1;
        const double cosine = (before.x * n.x + before.y * n.y) / (width * width / 4);
        std::vector<CGPoint> join{a, {a.x + before.x * side, a.y + before.y * side}};
        if (2 <= kMiterLimit * kMiterLimit * (1 + cosine))
          join.push_back({a.x + (before.x + n.x) * side / (1 + cosine), a.y + (before.y + n.y) * side / (1 + cosine)});
        join.push_back({a.x + n.x * side, a.y + n.y * side});
        pieces.push_back(turned(std::move(join)));
      }
      before = n;
    }
  }
  return pieces;
}

}  // namespace quellaro
