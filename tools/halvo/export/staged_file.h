#pragma once

#include <optional>
#include <string>

#include "platform/foundation/error.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

// A file that takes its place, or that of what was there, when it is complete, at once. Until then it has no name where
// the file system allows that, so that nothing of it is left whatever happens; elsewhere it goes with the object.
class StagedFile {
 public:
  // Refuses a target that is there and is no regular file.
  static quellaro::Result<StagedFile> begin(const std::string& target);
  StagedFile(StagedFile&& other) noexcept;
  StagedFile& operator=(StagedFile&&) = delete;
  ~StagedFile();

  int descriptor() const { return file_.get(); }
  std::optional<quellaro::NSError> putInPlace();

 private:
  StagedFile(std::string target, quellaro::FileDescriptor file, std::string name);

  std::string target_;
  quellaro::FileDescriptor file_;
  std::string name_;  // empty while it has none
};

}  // namespace halvo
