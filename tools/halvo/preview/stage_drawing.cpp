#include "preview/stage_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "picture/frame_source.h"
#include "picture/page.h"

namespace halvo {

using namespace quellaro;

namespace {

// Both white and black are seen on either.
constexpr std::uint32_t kLightSquare = 0xFFB0B0B0;
constexpr std::uint32_t kDarkSquare = 0xFF909090;
constexpr int kSquare = 8;  // units of the desktop

// The frame before, and the one that comes.
constexpr std::uint32_t kBefore = 0xFFE0559D;
constexpr std::uint32_t kAfter = 0xFF2E9BFF;
constexpr std::uint32_t kNeighbourShare = 150;  // of 256

constexpr double kText = 9;  // units of the desktop
constexpr double kWidestPanel = 620;

const std::vector<std::string>& keysText() {
  static const std::vector<std::string> lines{
      "space: pause, go on",
      "left, right: a frame back, a frame on",
      "home, end: first frame, last frame",
      "up, down: faster, slower: 1, 1/2, 1/4, 1/8",
      "mouse: on the time line: go there",
      "b: ground: checkerboard, black, white",
      "o: neighbouring frames as onion skin",
      "f: fit the window, or one unit to a pixel",
      "s: source beside the result",
      "c: findings of this frame",
      "h: these keys",
      "escape: close",
  };
  return lines;
}

void fillGround(PreviewGround ground, int square, const Surface& surface) {
  if (ground != PreviewGround::Checkerboard) {
    const std::uint32_t colour = ground == PreviewGround::Black ? 0xFF000000 : 0xFFFFFFFF;
    for (int y = 0; y < surface.height; ++y) std::fill_n(surface.row(y), surface.width, colour);
    return;
  }
  // Two rows of squares, and copies of them: a third of the time.
  for (int y = 0; y < std::min(2 * square, surface.height); ++y)
    for (int x = 0; x < surface.width; x += square)
      std::fill_n(surface.row(y) + x, std::min(square, surface.width - x),
                  (x / square + y / square) % 2 == 0 ? kLightSquare : kDarkSquare);
  for (int y = 2 * square; y < surface.height; ++y)
    std::copy_n(surface.row(y - 2 * square), surface.width, surface.row(y));
}

Surface partOf(const Surface& surface, int left, int width) {
  return {surface.pixels + left, width, surface.height, surface.stride};
}

// Where the frame lies, in the middle: as large as fits, as a view shows it, or in its own size.
CGRect placeOf(const SVGDocument& frame, bool fit, const Surface& surface) {
  const double side = std::min(surface.width, surface.height);
  CGSize size{side, side};
  if (!fit && frame.viewbox() && canBeShown(*frame.viewbox())) size = *frame.viewbox();
  return {{std::floor((surface.width - size.width) / 2), std::floor((surface.height - size.height) / 2)}, size};
}

// The tint where the picture has something.
void blendTinted(const Bitmap& picture, std::uint32_t tint, const Surface& surface) {
  for (int y = 0; y < picture.height; ++y) {
    const std::uint32_t* const from = picture.row(y);
    std::uint32_t* const to = surface.row(y);
    for (int x = 0; x < picture.width; ++x) {
      const std::uint32_t share = (from[x] >> 24) * kNeighbourShare >> 8;
      if (share == 0) continue;
      to[x] = (scaled(tint, share) + scaled(to[x], 256 - share)) | 0xFF000000;
    }
  }
}

}  // namespace

StageDrawing::StageDrawing() : view_(SVGView::initWithFrame({})) {}

int StageDrawing::sourceSide(int width, int height) { return std::max(1, std::min(width / 2, height)); }

void StageDrawing::draw(const PreviewSource& source, const Session& session, const StageExtras& extras,
                        const Surface& surface, double scale) {
  if (surface.width < 1 || surface.height < 1) return;
  const PreviewLook& look = session.look();
  fillGround(look.ground, std::max(1, static_cast<int>(kSquare * scale)), surface);
  if (look.source && surface.width > 1) {
    const int middle = surface.width / 2;
    drawSource(extras, partOf(surface, 0, middle), scale);
    drawResult(source, session, partOf(surface, middle, surface.width - middle));
    for (int y = 0; y < surface.height; ++y) surface.row(y)[middle] = 0xFF5A6CF0;
    const Overlay::Style label{"#15171ce0", "#ffffff", kText * scale, middle};
    const int top = surface.height - static_cast<int>(std::ceil(3 * kText * scale));
    sourceLabel_.draw({"source"}, label, 0, top, surface);
    resultLabel_.draw({"result"}, label, middle + 1, top, surface);
  } else {
    drawResult(source, session, surface);
  }

  const double height = kText * scale;
  const int margin = static_cast<int>(std::round(height));
  Overlay::Style style{"#15171ce0", "#ffffff", height, std::max(1, surface.width - 2 * margin)};
  style.width = std::min(style.width, static_cast<int>(kWidestPanel * scale));
  style.lines = std::max(1, static_cast<int>((surface.height - 4 * height) / (1.9 * height)));
  int top = margin;
  const Overlay::Style alarm{"#b3261ef0", "#ffffff", height, style.width, std::max(1, style.lines / 3)};
  if (!extras.problem.empty()) top += problem_.draw({extras.problem}, alarm, margin, top, surface) + margin;
  if (look.help) top += help_.draw(keysText(), style, margin, top, surface) + margin;
  if (look.findings) findings_.draw(extras.findings, style, margin, top, surface);
}

void StageDrawing::drawResult(const PreviewSource& source, const Session& session, const Surface& surface) {
  const auto step = session.step();
  const auto& steps = source.times.steps();
  const bool fit = session.look().fit;
  if (step && session.look().onion && steps.size() > 1) {
    const auto at = [&](std::size_t other) { return source.frames[steps[other].frame]; };
    if (*step > 0) drawNeighbour(at(*step - 1), fit, kBefore, surface);
    if (*step + 1 < steps.size()) drawNeighbour(at(*step + 1), fit, kAfter, surface);
  }
  if (step) drawFrame(source.frames[steps[*step].frame], fit, surface);
}

void StageDrawing::drawFrame(const Document& frame, bool fit, const Surface& surface) {
  view_->setFrame(placeOf(*frame, fit, surface));
  view_->setSvgDocument(frame);
  view_->showLayer(frame->makeLayer());
  view_->display(compositor_, surface);
}

void StageDrawing::drawNeighbour(const Document& frame, bool fit, std::uint32_t tint, const Surface& surface) {
  if (neighbour_.width == surface.width && neighbour_.height == surface.height)
    std::fill(neighbour_.pixels.begin(), neighbour_.pixels.end(), 0);
  else
    neighbour_ = Bitmap(surface.width, surface.height);
  drawFrame(frame, fit, neighbour_);
  blendTinted(neighbour_, tint, surface);
}

void StageDrawing::drawSource(const StageExtras& extras, const Surface& surface, double scale) {
  if (extras.source != nullptr)
    return blend(*extras.source, (surface.width - extras.source->width) / 2,
                 (surface.height - extras.source->height) / 2, surface);
  Overlay note;
  const double height = kText * scale;
  note.draw({extras.sourceProblem}, {"#15171ce0", "#ffffff", height, std::max(1, surface.width)}, 0, surface.height / 2,
            surface);
}

}  // namespace halvo
