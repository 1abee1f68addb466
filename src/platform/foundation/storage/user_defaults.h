#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace quellaro {

// Small values that outlive the process: the JSON object in <Library>/Preferences/defaults.json. A value is seen at
// once by this process, and is on disk after synchronize(), at the main queue's next idle turn, and at exit. Each write
// merges its keys into the file under a lock, so that two processes that share a Library lose nothing of each other's.
// Without a Library, values last as long as the process. Any thread.
class NSUserDefaults {
 public:
  static NSUserDefaults& standardUserDefaults();

  // Nothing when the key is absent or holds a value of another type.
  std::optional<std::string> stringForKey(const std::string& key);
  std::optional<double> doubleForKey(const std::string& key);
  void setString(const std::string& key, const std::string& value);
  void setDouble(const std::string& key, double value);
  // False when the values could not be written; they stay visible and the next write tries again.
  bool synchronize();

 private:
  // What identifies one version of the file.
  struct FileVersion {
    std::uint64_t inode = 0;
    long long seconds = 0;
    long nanoseconds = 0;
    long long size = -1;
    friend bool operator==(const FileVersion&, const FileVersion&) = default;
  };
  // Key to the value's JSON text: values that others stored are kept as they are.
  using Values = std::map<std::string, std::string>;

  NSUserDefaults() = default;
  std::optional<std::string> valueForKey(const std::string& key);
  void setValue(const std::string& key, std::string json);
  bool write();
  void followLibrary();
  static FileVersion versionOf(const std::string& path);

  std::mutex mutex_;
  // Where the values belong that are still pending.
  std::string path_;
  FileVersion version_;
  Values stored_;
  Values pending_;
  bool idleHandlerSet_ = false;
};

}  // namespace quellaro
