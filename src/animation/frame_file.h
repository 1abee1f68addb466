#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/error.h"
#include "svg/document.h"

namespace quellaro {

// The texts of a cue's frames in playing order, for as long as `storage` or a copy of it is kept.
struct FrameTexts {
  std::shared_ptr<const void> storage;
  std::vector<std::string_view> texts;
  // The memory that the file was read into, of no more use but as memory.
  std::string spent;
};

// Reads animation.json: a JSON array of strings, each the text of one SVG document. Any other JSON value holds no
// frames, which is no error; a file that cannot be read, or that is not valid JSON, is one. All the JSON parser's
// memory but the texts is given back before this returns. Any thread.
Result<FrameTexts> readFrameFile(const std::string& path);

// The same for bytes that have been read.
Result<FrameTexts> decodeFrames(std::string bytes);

// Parses every frame; the outlines take the place of the file's bytes. The documents share their memory: it is given
// back when the last of them is gone. An error when they hold more than limits allow a cue, or memory runs out.
Result<std::vector<std::shared_ptr<const SVGDocument>>> parseFrames(FrameTexts frames);

}  // namespace quellaro
