#pragma once

#include <optional>
#include <string>

#include "platform/foundation/json/json_reader.h"

namespace quellaro {

// The directory of files that come with a piece of software, with its information dictionary, the file Info.json.
class NSBundle {
 public:
  // This library's own bundle: share/quellaro-halvo-1 beside the directory that this code lies in, built or installed.
  static const NSBundle& library();
  // Puts another directory in its place. Before first use; main thread.
  static void setLibraryPath(const std::string& path);

  explicit NSBundle(std::string path);

  const std::string& bundlePath() const { return path_; }
  // An entry of the information dictionary; nothing when it is not there or the dictionary cannot be read. Valid as
  // long as the bundle.
  std::optional<JSONValue> objectForInfoDictionaryKey(const std::string& key) const;

 private:
  std::string path_;
  std::optional<JSONDocument> information_;
};

}  // namespace quellaro
