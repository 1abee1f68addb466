#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"

namespace halvo {

// So many 256ths of each channel, two of them at a time.
inline std::uint32_t scaled(std::uint32_t pixel, std::uint32_t share) {
  const std::uint32_t even = ((pixel & 0x00FF00FF) * share + 0x00800080) >> 8 & 0x00FF00FF;
  const std::uint32_t odd = ((pixel >> 8 & 0x00FF00FF) * share + 0x00800080) & 0xFF00FF00;
  return even | odd;
}

// Lays a picture over another one, at that pixel; what lies beyond an edge is cut off.
void blend(const quellaro::Bitmap& picture, int left, int top, const quellaro::Surface& surface);

// The text in lines of at most that width, broken at blanks, further ones indented. `height` is that of its capitals.
std::vector<std::string> wrapped(std::string_view text, double height, double width);

// Lines of text on a ground of their own. Drawn once and kept until it reads otherwise.
class Overlay {
 public:
  struct Style {
    const char* ground;
    const char* text;
    double height;   // of capitals, in pixels
    int width;       // at most, with its margins
    int lines = 60;  // at most; what is left out is told
  };

  // Its height.
  int draw(const std::vector<std::string>& lines, const Style& style, int left, int top,
           const quellaro::Surface& surface);

 private:
  void write(const std::vector<std::string>& lines, const Style& style);

  std::vector<std::string> lines_;
  int width_ = 0;
  double height_ = 0;
  quellaro::Bitmap picture_;
  quellaro::Compositor compositor_;
};

}  // namespace halvo
