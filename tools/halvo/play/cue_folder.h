#pragma once

#include <memory>
#include <string>

#include "platform/foundation/error.h"

namespace halvo {

// A cue's directory as a host would find it: the library's bundle, beside a Library of its own, gone with the object,
// in which nothing is known but this cue. So what is on the machine neither takes its place nor counts its plays, and
// no address is contacted.
class CueFolder {
 public:
  // The name under which the library finds it.
  static constexpr const char* kCueName = "cue";

  // Before the library is used.
  static quellaro::Result<std::unique_ptr<CueFolder>> open(const std::string& directory);
  CueFolder(const CueFolder&) = delete;
  CueFolder& operator=(const CueFolder&) = delete;
  ~CueFolder();

 private:
  explicit CueFolder(std::string library) : library_(std::move(library)) {}

  std::string library_;
};

}  // namespace halvo
