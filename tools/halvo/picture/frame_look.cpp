#include "picture/frame_look.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "picture/frame_view.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr int kSide = 128;
// Of 255: less is not told from the ground.
constexpr int kSeen = 6;

int part(std::uint32_t pixel, int shift) { return static_cast<int>(pixel >> shift & 255); }

// The largest difference of any part of the colour.
int distance(std::uint32_t a, std::uint32_t b) {
  int largest = 0;
  for (const int shift : {0, 8, 16, 24}) largest = std::max(largest, std::abs(part(a, shift) - part(b, shift)));
  return largest;
}

}  // namespace

FrameEyes::FrameEyes() : view_(makeClearView({kSide, kSide})), picture_(kSide, kSide), before_(kSide, kSide) {}

FrameEyes::Look FrameEyes::look(const std::shared_ptr<const SVGDocument>& frame) {
  std::swap(picture_, before_);
  std::fill(picture_.pixels.begin(), picture_.pixels.end(), 0);
  showFrame(*view_, frame);
  view_->display(compositor_, picture_);
  Look look;
  std::uint64_t changes = 0;
  for (std::size_t i = 0; i < picture_.pixels.size(); ++i) {
    const std::uint32_t pixel = picture_.pixels[i];
    changes += static_cast<std::uint64_t>(distance(pixel, before_.pixels[i]));
    // Colours are multiplied by alpha: on black a pixel adds its colour, from white it takes what its colour lacks.
    const int alpha = part(pixel, 24);
    for (const int shift : {0, 8, 16}) {
      look.isSeenOnBlack = look.isSeenOnBlack || part(pixel, shift) >= kSeen;
      look.isSeenOnWhite = look.isSeenOnWhite || alpha - part(pixel, shift) >= kSeen;
    }
  }
  look.change = static_cast<double>(changes) / (255.0 * kSide * kSide);
  return look;
}

}  // namespace halvo
