#include "platform/foundation/storage/bundle.h"

#include <dlfcn.h>

#include <filesystem>
#include <memory>
#include <utility>

#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

constexpr const char* kDirectoryName = QUELLARO_DATA_DIRECTORY;
// <prefix>/lib, and <prefix>/lib/<architecture> as Debian has it.
constexpr int kLevelsAbove = 2;

// The file that this code was loaded from: the shared object, or the program that it is linked into.
std::filesystem::path ownFile() {
  Dl_info information{};
  if (dladdr(reinterpret_cast<const void*>(&ownFile), &information) == 0 || information.dli_fname == nullptr) return {};
  std::error_code code;
  // A program's own name may be relative to where it was started.
  std::filesystem::path file = std::filesystem::canonical(information.dli_fname, code);
  if (code) file = std::filesystem::canonical("/proc/self/exe", code);
  return file;
}

std::string findLibraryBundle() {
  std::filesystem::path directory = ownFile().parent_path();
  for (int level = 0; level < kLevelsAbove; ++level) {
    directory = directory.parent_path();
    const std::filesystem::path candidate = directory / kDirectoryName;
    if (FileManager::directoryExistsAtPath(candidate.string())) return candidate.string();
  }
  return (ownFile().parent_path().parent_path() / kDirectoryName).string();
}

std::unique_ptr<NSBundle>& libraryBundle() {
  static std::unique_ptr<NSBundle> bundle;
  return bundle;
}

}  // namespace

const NSBundle& NSBundle::library() {
  if (!libraryBundle()) libraryBundle() = std::make_unique<NSBundle>(findLibraryBundle());
  return *libraryBundle();
}

void NSBundle::setLibraryPath(const std::string& path) {
  // The host may change its working directory later.
  std::error_code code;
  const std::filesystem::path absolute = std::filesystem::absolute(path, code);
  libraryBundle() = std::make_unique<NSBundle>(code ? path : absolute.string());
}

NSBundle::NSBundle(std::string path) : path_(std::move(path)) {
  while (path_.size() > 1 && path_.back() == '/') path_.pop_back();
  std::optional<std::string> bytes = FileManager::contentsAtPath(path_ + "/Info.json");
  if (!bytes) return;
  Result<JSONDocument> document = JSONDocument::parse(std::move(*bytes));
  if (document) information_ = std::move(*document);
}

std::optional<JSONValue> NSBundle::objectForInfoDictionaryKey(const std::string& key) const {
  if (!information_) return std::nullopt;
  return information_->root().member(key);
}

}  // namespace quellaro
