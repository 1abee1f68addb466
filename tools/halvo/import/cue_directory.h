#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "import/refusal.h"
#include "platform/foundation/error.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

// Onto the disk, so that a full one is known of.
std::optional<quellaro::NSError> writeWhole(std::string_view bytes, const std::string& path);

// Why nothing can be written under this name: something is there that is not to be replaced, or no cue. Without
// `replace`, anything that is there is in the way.
std::optional<Refusal> whyNoTarget(const std::string& target, bool replace);

// A directory beside the one that a cue is to be written to, which takes its place when the cue is complete, at once.
// Gone with the object otherwise, or, when its process is killed, with the next import beside it.
class StagedCue {
 public:
  static Importing<StagedCue> begin(const std::string& target);
  StagedCue(StagedCue&& other) noexcept;
  StagedCue& operator=(StagedCue&&) = delete;
  ~StagedCue();

  const std::string& path() const { return path_; }
  std::string pathOf(const char* file) const { return path_ + "/" + file; }
  // What is replaced is looked at once more. It reads as before or as after, whatever happens on the way.
  std::optional<Refusal> putInPlace(bool replace);

 private:
  StagedCue(std::string target, std::string path);

  std::string target_;
  std::string path_;  // empty when there is none
  quellaro::FileDescriptor lock_;
};

}  // namespace halvo
