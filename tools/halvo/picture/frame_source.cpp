#include "picture/frame_source.h"

#include <strings.h>

#include <cmath>
#include <memory>
#include <utility>

#include "input.h"

namespace halvo {

using namespace quellaro;

bool isSvgDocument(const std::string& path, std::string_view text) {
  constexpr std::string_view kEnding = ".svg";
  if (path.size() >= kEnding.size() && strcasecmp(path.c_str() + path.size() - kEnding.size(), kEnding.data()) == 0)
    return true;
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  return start != std::string_view::npos && text[start] == '<';
}

FrameTexts framesOfDocument(std::string text) {
  const auto kept = std::make_shared<const std::string>(std::move(text));
  return {kept, {*kept}, {}};
}

Result<FrameSource> readFrames(const std::string& path) {
  auto text = readInput(path);
  if (!text) return text.error();
  if (isSvgDocument(path, *text)) return FrameSource{framesOfDocument(std::move(*text)), true};
  auto frames = decodeFrames(std::move(*text));
  if (!frames) return frames.error();
  return FrameSource{std::move(*frames), false};
}

Result<FrameSource> readCueFrames(const std::string& path) {
  auto frames = readFrameFile(path);
  if (!frames) return frames.error();
  return FrameSource{std::move(*frames), false};
}

bool canBeShown(const CGSize& size) {
  return std::isfinite(size.width) && std::isfinite(size.height) && size.width != 0 && size.height != 0;
}

}  // namespace halvo
