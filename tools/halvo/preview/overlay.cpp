#include "preview/overlay.h"

#include <algorithm>
#include <cmath>

#include "picture/page.h"

namespace halvo {

using namespace quellaro;

namespace {

constexpr const char* kIndent = "   ";
// Longer texts than anybody would read are not measured to their end.
constexpr std::size_t kLongestText = 2000;

}  // namespace

void blend(const Bitmap& picture, int left, int top, const Surface& surface) {
  const int firstRow = std::max(0, -top);
  const int lastRow = std::min(picture.height, surface.height - top);
  const int first = std::max(0, -left);
  const int last = std::min(picture.width, surface.width - left);
  for (int y = firstRow; y < lastRow; ++y) {
    const std::uint32_t* const from = picture.row(y);
    std::uint32_t* const to = surface.row(top + y) + left;
    for (int x = first; x < last; ++x) {
      const std::uint32_t alpha = from[x] >> 24;
      if (alpha == 255)
        to[x] = from[x];
      else if (alpha > 0)
        to[x] = from[x] + scaled(to[x], 256 - alpha - (alpha >> 7));
    }
  }
}

std::vector<std::string> wrapped(std::string_view text, double height, double width) {
  text = text.substr(0, kLongestText);
  std::vector<std::string> lines;
  std::string line;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' ', 1), text.size());
    const std::string_view word = text.substr(0, end);
    if (!line.empty() && Page::widthOf(line + std::string(word), height) > width) {
      lines.push_back(std::move(line));
      line = std::string(kIndent) + std::string(word.substr(word.front() == ' ' ? 1 : 0));
    } else {
      line += word;
    }
    text.remove_prefix(end);
  }
  lines.push_back(std::move(line));
  return lines;
}

int Overlay::draw(const std::vector<std::string>& lines, const Style& style, int left, int top,
                  const Surface& surface) {
  if (lines != lines_ || style.width != width_ || style.height != height_) write(lines, style);
  blend(picture_, left, top, surface);
  return picture_.height;
}

void Overlay::write(const std::vector<std::string>& lines, const Style& style) {
  lines_ = lines;
  width_ = style.width;
  height_ = style.height;
  const double pitch = std::round(style.height * 1.9);
  const double margin = std::round(style.height);
  const double room = style.width - 2 * margin;
  std::vector<std::string> shown;
  for (const std::string& line : lines) {
    if (shown.size() >= static_cast<std::size_t>(style.lines)) break;
    for (std::string& part : wrapped(line, style.height, room)) shown.push_back(std::move(part));
  }
  if (shown.size() > static_cast<std::size_t>(style.lines)) {
    shown.resize(static_cast<std::size_t>(std::max(1, style.lines)));
    shown.back() = "...";
  }
  if (shown.empty()) shown.emplace_back();
  double widest = 0;
  for (const std::string& line : shown) widest = std::max(widest, Page::widthOf(line, style.height));
  const int width = std::max(1, std::min(style.width, static_cast<int>(std::ceil(widest + 2 * margin))));
  const double height = 2 * margin + pitch * static_cast<double>(shown.size() - 1) + style.height;
  picture_ = Bitmap(width, static_cast<int>(std::ceil(height)));
  Page page;
  page.rectangle({{0, 0}, {static_cast<double>(width), height}}, style.ground);
  double y = margin;
  for (const std::string& line : shown) {
    page.text({margin, y}, style.height, line, style.text, Page::Align::Left, room);
    y += pitch;
  }
  page.flush(compositor_, picture_);
}

}  // namespace halvo
