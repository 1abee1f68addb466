#pragma once

#include <string>

namespace quellaro {

// The library's version, and what is remembered between runs. Any thread.
class HalvoUtility {
 public:
  // "CFBundleShortVersionString" of the library's bundle; "0" when there is no such text.
  static std::string sdkVersion();
  // When a version check was last processed, in seconds since 1970; 0 when never.
  static double lastUpgradeTime();
  static void setLastUpgradeTime(double secondsSince1970);
  // The version of the cue's active downloaded assets: "0" when none were ever installed, empty once they were
  // discarded.
  static std::string cueVersion(const std::string& cueName);
  static void setCueVersion(const std::string& cueName, const std::string& version);
};

}  // namespace quellaro
