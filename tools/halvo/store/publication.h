#pragma once

#include <string>
#include <vector>

namespace halvo {

// A version of a cue, for some versions of the library.
struct Publication {
  // Normalised.
  std::string cue;
  std::string version;
  // Of the library; not empty.
  std::vector<std::string> sdkVersions;
};

}  // namespace halvo
