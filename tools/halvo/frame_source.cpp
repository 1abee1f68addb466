#include "frame_source.h"

#include <cmath>
#include <memory>

#include "platform/foundation/file_manager.h"

namespace halvo {

using namespace quellaro;

Result<FrameTexts> readFrames(const std::string& source) {
  if (!source.ends_with(".svg")) return readFrameFile(source);
  auto text = FileManager::readAtPath(source);
  if (!text) return text.error();
  const auto kept = std::make_shared<const std::string>(std::move(*text));
  return FrameTexts{kept, {*kept}, {}};
}

bool canBeShown(const CGSize& size) {
  return std::isfinite(size.width) && std::isfinite(size.height) && size.width != 0 && size.height != 0;
}

}  // namespace halvo
