#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/foundation/error.h"
#include "store/playable_cue.h"

namespace halvo {

struct Publication {
  // Normalised.
  std::string cue;
  std::string version;
  // Of the library; not empty.
  std::vector<std::string> sdkVersions;
};

// The bytes written and those to be written, now and then.
using Progress = std::function<void(std::size_t written, std::size_t total)>;

// Writes the cue below a path that was not there before, and then lets version_config.json list it: whatever happens in
// between, the store points at files that are there. Everything else that the store lists stays as it is. Gives the
// path, relative to the store.
quellaro::Result<std::string> publishIntoStore(const std::string& store, const Publication& publication,
                                               const CueFiles& files, const Progress& progress);

}  // namespace halvo
