#pragma once

#include <string>
#include <vector>

#include "platform/foundation/error.h"

namespace quellaro {

// Reads animation.json: a JSON array of strings, each the text of one SVG document, in playing order. Any other JSON
// value holds no frames, which is no error; a file that cannot be read, or that is not valid JSON, is one. The file's
// bytes and all the JSON parser's memory are given back before this returns, so what remains are the texts. Any thread.
Result<std::vector<std::string>> readFrameFile(const std::string& path);

// The same for bytes that have been read.
Result<std::vector<std::string>> decodeFrames(std::string bytes);

}  // namespace quellaro
