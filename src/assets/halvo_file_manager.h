#pragma once

#include <array>
#include <optional>
#include <string>

namespace quellaro {

// The files of a cue's directory.
inline constexpr const char* kPlayConfigFile = "play_config.json";
inline constexpr const char* kSoundFile = "audio.mp3";
inline constexpr const char* kAnimationFile = "animation.json";
inline constexpr const char* kHapticsFile = "signature_forte.ahap";
// In the order in which they are downloaded.
inline constexpr std::array<const char*, 4> kCueFiles{kPlayConfigFile, kSoundFile, kAnimationFile, kHapticsFile};
// Lies at the root of the active assets and in the library's bundle.
inline constexpr const char* kVersionConfigFile = "version_config.json";

// Where a cue's assets lie: built into the library's bundle, or downloaded into the application's Library directory.
// Failures are printed, one line each, and otherwise ignored. Any thread.
class HalvoFileManager {
 public:
  // <Library>/halvo_assets_active, with "/" and the cue's name when one is given, when there is anything at that path;
  // the library's bundle otherwise. There is no fallback file by file.
  static std::string assetsDirectoryPath(const std::optional<std::string>& cueName);
  // The "version_config.json" that a check for upgrades reads: that of the active assets, or the bundle's while there
  // are none. `path` becomes its path.
  static std::optional<std::string> versionConfig(std::string& path);
  // The one that a prepare reads: the bundle's, too, when that of the active assets cannot be read.
  static std::optional<std::string> versionConfigOrBuiltIn(std::string& path);
  // The path of the Library directory with the name appended as it is (names begin with "/"); nothing without a
  // Library.
  static std::optional<std::string> libraryFileURL(const std::string& name);

  // <Library>/halvo_assets_active, and a cue's directory below it and below <Library>/halvo_assets_temp. Nothing
  // without a Library, and nothing for a cue name that is not a single path component: such a cue is only ever read
  // from the bundle.
  static std::optional<std::string> activeRoot();
  static std::optional<std::string> activeDirectory(const std::string& cueName);
  static std::optional<std::string> stagingDirectory(const std::string& cueName);

  // With those above it; nothing happens when anything is at the path.
  static void createDirectoryIfNeeded(const std::string& path);
  // With all it holds; nothing happens when nothing is there.
  static void removeDirectoryIfExists(const std::string& path);
  // Fails when something is at the destination; the source then stays.
  static void moveItem(const std::string& from, const std::string& to);
};

}  // namespace quellaro
