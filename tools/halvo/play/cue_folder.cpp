#include "play/cue_folder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "platform/foundation/application.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// What a store would say of the cue.
std::string versionConfig() {
  JSONWriter json;
  json.beginArray().beginObject().key("sdk_versions").beginArray().string(HalvoUtility::sdkVersion()).endArray();
  json.key("cues").beginObject().key(CueFolder::kCueName).beginObject();
  json.key("version").string("1").key("filepath").string("").endObject().endObject();
  json.key("analytics").beginObject().key("enable").boolean(false);
  json.key("frequency").string("M").key("url").string("").endObject().endObject().endArray();
  return json.take();
}

}  // namespace

Result<std::unique_ptr<CueFolder>> CueFolder::open(const std::string& directory) {
  if (!FileManager::directoryExistsAtPath(directory)) return posixError(ENOENT);
  std::error_code problem;
  std::string library = (std::filesystem::temp_directory_path(problem) / "halvo-XXXXXX").string();
  if (problem) return posixError(problem.value());
  if (mkdtemp(library.data()) == nullptr) return posixError(errno);
  // Private constructor: make_unique cannot reach it.
  std::unique_ptr<CueFolder> folder(new CueFolder(library));
  NSBundle::setLibraryPath(directory);
  setLibraryDirectory(library);
  const std::string root = HalvoFileManager::activeRoot().value_or(library);
  if (const auto error = FileManager::createDirectoryAtPath(root)) return *error;
  if (const auto error = FileManager::writeAtomically(versionConfig(), root + "/" + kVersionConfigFile)) return *error;
  return folder;
}

CueFolder::~CueFolder() { FileManager::removeItemAtPath(library_); }

}  // namespace halvo
