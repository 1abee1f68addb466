// Draws the same layer trees with the compositor and with cairo, and prints how their times compare.
#include <ctime>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "heavy_frames.h"
#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/raster/spans.h"
#include "quartzcore/cairo_renderer.h"

namespace {

using namespace quellaro;
using bench::Drawing;

constexpr int kFrames = 24;
constexpr int kRounds = 15;

double cpuMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

double timeOf(const std::function<void()>& work) {
  const double start = cpuMicroseconds();
  work();
  return cpuMicroseconds() - start;
}

double meanDifference(const Bitmap& a, const Bitmap& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i)
    for (const int shift : {0, 8, 16, 24})
      sum += std::abs(static_cast<int>(a.pixels[i] >> shift & 255) - static_cast<int>(b.pixels[i] >> shift & 255));
  return sum / (4.0 * static_cast<double>(a.pixels.size()));
}

void compare(const char* name, int side, double target, Drawing (*drawing)(int),
             const SpanFunctions& spans = fastestSpans()) {
  std::vector<std::shared_ptr<CALayer>> trees;
  for (int i = 0; i < kFrames; ++i) trees.push_back(bench::layerTree(drawing(i), side));
  Bitmap ours(side, side);
  Bitmap cairos(side, side);
  Compositor compositor(spans);
  double difference = 0;
  for (const auto& tree : trees) {
    compositor.draw(*tree, ours);
    drawWithCairo(*tree, cairos);
    difference = std::max(difference, meanDifference(ours, cairos));
  }
  // Turn by turn, and the least of several rounds: what the work costs when nothing else disturbs.
  double our = 1e18;
  double their = 1e18;
  for (int i = 0; i < kRounds; ++i) {
    our = std::min(our, timeOf([&] {
                     for (const auto& tree : trees) compositor.draw(*tree, ours);
                   }));
    their = std::min(their, timeOf([&] {
                       for (const auto& tree : trees) drawWithCairo(*tree, cairos);
                     }));
  }
  std::printf("draw %-6s %4d x %-4d  %8.1f us a frame  cairo %8.1f us  ratio %.3f (target %.2f)  difference %.3f\n",
              name, side, side, our / kFrames, their / kFrames, our / their, target, difference);
}

}  // namespace

int main() {
  compare("heavy", 480, 0.23, bench::heavyFrame);
  compare("heavy", 1080, 0.21, bench::heavyFrame);
  compare("heavy", 2160, 0.26, bench::heavyFrame);
  compare("icon", 48, 0.25, bench::icon);
  compare("icon", 480, 0.42, bench::icon);
  std::puts("without AVX2");
  compare("heavy", 480, 0.23, bench::heavyFrame, vectorSpans());
  compare("heavy", 2160, 0.26, bench::heavyFrame, vectorSpans());
  compare("icon", 48, 0.25, bench::icon, vectorSpans());
}
