#include "frame_source.h"

#include <strings.h>

#include <cmath>
#include <memory>
#include <string_view>

#include "platform/foundation/file_manager.h"

namespace halvo {

using namespace quellaro;

bool isSvgDocument(const std::string& path) {
  constexpr std::string_view kEnding = ".svg";
  return path.size() >= kEnding.size() && strcasecmp(path.c_str() + path.size() - kEnding.size(), kEnding.data()) == 0;
}

Result<FrameTexts> readFrames(const std::string& source) {
  if (!isSvgDocument(source)) return readFrameFile(source);
  auto text = FileManager::readAtPath(source);
  if (!text) return text.error();
  const auto kept = std::make_shared<const std::string>(std::move(*text));
  return FrameTexts{kept, {*kept}, {}};
}

bool canBeShown(const CGSize& size) {
  return std::isfinite(size.width) && std::isfinite(size.height) && size.width != 0 && size.height != 0;
}

}  // namespace halvo
