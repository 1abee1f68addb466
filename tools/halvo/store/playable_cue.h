#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "platform/foundation/error.h"

namespace halvo {

// The bytes of a cue's files, by name.
using CueFiles = std::map<std::string, std::string>;

struct PlayableCue {
  CueFiles files;
  std::size_t warnings = 0;  // of what `halvo check` says
};

// Reads the four files of a cue and makes sure that a device can play them: that they hold nothing which `halvo check`
// calls an error. The error names the file and says what is wrong with it.
quellaro::Result<PlayableCue> readPlayableCue(const std::string& directory);

}  // namespace halvo
