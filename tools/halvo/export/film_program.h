#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/error.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

// The ffmpeg program at work: it is fed through a pipe and writes into a file that is open already.
class FilmProgram {
 public:
  // How the arguments name that file.
  static constexpr const char* kOutput = "/proc/self/fd/3";

  // The error tells what installs it where it is missing.
  static quellaro::Result<FilmProgram> start(const std::vector<std::string>& arguments, int output);
  FilmProgram(FilmProgram&& other) noexcept;
  FilmProgram& operator=(FilmProgram&&) = delete;
  // Ends it, if it has not been waited for.
  ~FilmProgram();

  // False once it reads no more.
  bool feed(std::string_view bytes);
  // After all has been fed: what it says when it has failed.
  std::optional<quellaro::NSError> finish();

 private:
  FilmProgram(pid_t process, quellaro::FileDescriptor input, quellaro::FileDescriptor words);
  std::string lastWords() const;

  pid_t process_;
  quellaro::FileDescriptor input_;
  quellaro::FileDescriptor words_;  // its standard error
};

}  // namespace halvo
