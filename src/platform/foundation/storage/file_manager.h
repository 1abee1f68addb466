#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/error.h"
#include "platform/foundation/memory/limits.h"

namespace quellaro {

// Whole-file operations on paths. Every path is used as it is given; nothing is expanded. Those that can fail give
// why they did, or nothing when it is done. Any thread.
class FileManager {
 public:
  // Anything at all, a directory too; a symbolic link counts when what it names exists.
  static bool fileExistsAtPath(const std::string& path);
  static bool directoryExistsAtPath(const std::string& path);

  // All of a regular file; nothing for anything else (a pipe would make the reader wait) and for what is larger than
  // the bound. The text has room left for a parser's padding.
  static std::optional<std::string> contentsAtPath(const std::string& path, std::size_t bound = limits::kFileBytes);
  // The same, telling why there is nothing.
  static Result<std::string> readAtPath(const std::string& path, std::size_t bound = limits::kFileBytes);

  // The names of what lies in a directory, in no order; empty when it cannot be read.
  static std::vector<std::string> contentsOfDirectoryAtPath(const std::string& path);

  static std::optional<NSError> createDirectoryAtPath(const std::string& path);
  // A directory goes with all it holds. A symbolic link goes, and what it names stays.
  static std::optional<NSError> removeItemAtPath(const std::string& path);
  // Fails when something is at the destination.
  static std::optional<NSError> moveItemAtPath(const std::string& from, const std::string& to);
  // The file reads as before or as after, whenever the process is killed. It is not forced to the disk. What killed
  // writes have left in the directory goes.
  static std::optional<NSError> writeAtomically(std::string_view bytes, const std::string& path);
  // What writes have left in a directory whose processes were killed; not what is being written.
  static void removeUnfinishedWrites(const std::string& directory);
};

}  // namespace quellaro
