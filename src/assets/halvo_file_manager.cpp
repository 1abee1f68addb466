#include "assets/halvo_file_manager.h"

#include "platform/foundation/application.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

constexpr const char* kActiveRoot = "/halvo_assets_active";
constexpr const char* kStagingRoot = "/halvo_assets_temp";

bool isSinglePathComponent(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

std::optional<std::string> cueDirectory(const char* root, const std::string& cueName) {
  if (!isSinglePathComponent(cueName)) return std::nullopt;
  std::optional<std::string> path = HalvoFileManager::libraryFileURL(root);
  if (path) *path += "/" + cueName;
  return path;
}

void printFailure(const std::string& what, const std::optional<NSError>& error) {
  if (error) print("QuellaroHalvo: " + what + " : " + error->localizedDescription, LogLevel::Error);
}

}  // namespace

std::string HalvoFileManager::assetsDirectoryPath(const std::optional<std::string>& cueName) {
  const std::optional<std::string> path = cueName ? activeDirectory(*cueName) : activeRoot();
  if (path && FileManager::fileExistsAtPath(*path)) return *path;
  return NSBundle::library().bundlePath();
}

std::optional<std::string> HalvoFileManager::versionConfig(std::string& path) {
  path = assetsDirectoryPath(std::nullopt) + "/" + kVersionConfigFile;
  return FileManager::contentsAtPath(path);
}

std::optional<std::string> HalvoFileManager::versionConfigOrBuiltIn(std::string& path) {
  if (std::optional<std::string> active = versionConfig(path)) return active;
  path = NSBundle::library().bundlePath() + "/" + kVersionConfigFile;
  return FileManager::contentsAtPath(path);
}

std::optional<std::string> HalvoFileManager::libraryFileURL(const std::string& name) {
  std::optional<std::string> path = NSSearchPathForLibraryDirectory();
  if (path) *path += name;
  return path;
}

std::optional<std::string> HalvoFileManager::activeRoot() { return libraryFileURL(kActiveRoot); }

std::optional<std::string> HalvoFileManager::activeDirectory(const std::string& cueName) {
  return cueDirectory(kActiveRoot, cueName);
}

std::optional<std::string> HalvoFileManager::stagingDirectory(const std::string& cueName) {
  return cueDirectory(kStagingRoot, cueName);
}

void HalvoFileManager::createDirectoryIfNeeded(const std::string& path) {
  if (FileManager::fileExistsAtPath(path)) return;
  printFailure("Filed create directoy at path " + path, FileManager::createDirectoryAtPath(path));
}

void HalvoFileManager::removeDirectoryIfExists(const std::string& path) {
  if (!FileManager::fileExistsAtPath(path)) return;
  printFailure("Filed remove directoy at path " + path, FileManager::removeItemAtPath(path));
}

void HalvoFileManager::moveItem(const std::string& from, const std::string& to) {
  printFailure("Filed to move item", FileManager::moveItemAtPath(from, to));
}

}  // namespace quellaro
