#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quellaro {

// Pixels in rows from the top, each 0xAARRGGBB with the colours multiplied by alpha. Transparent when made.
struct Bitmap {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  Bitmap() = default;
  Bitmap(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

  std::uint32_t* row(int y) { return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width); }
  const std::uint32_t* row(int y) const {
    return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
  }
  friend bool operator==(const Bitmap&, const Bitmap&) = default;
};

// The same kind of pixels in somebody else's memory, which lives as long as they are drawn into.
struct Surface {
  std::uint32_t* pixels;
  int width;
  int height;
  // Pixels from one row to the next.
  std::size_t stride;

  Surface(std::uint32_t* p, int w, int h, std::size_t s) : pixels(p), width(w), height(h), stride(s) {}
  Surface(Bitmap& bitmap)
      : Surface(bitmap.pixels.data(), bitmap.width, bitmap.height, static_cast<std::size_t>(bitmap.width)) {}

  std::uint32_t* row(int y) const { return pixels + static_cast<std::size_t>(y) * stride; }
};

}  // namespace quellaro
