#pragma once

#include <string>
#include <vector>

#include "import/refusal.h"

namespace halvo {

// The files that become frames, in playing order: those that were named, and in place of a folder its .svg and .svgz
// files in natural order. Nothing hidden, and nothing of a folder's folders.
Importing<std::vector<std::string>> listSources(const std::vector<std::string>& named);

}  // namespace halvo
