#include "platform/foundation/storage/user_defaults.h"

#include <sys/stat.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "platform/dispatch/main_queue.h"
#include "platform/foundation/application.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/storage/file_lock.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

// Nothing when there is a file that is no JSON object.
std::optional<std::map<std::string, std::string>> readValues(const std::string& path) {
  std::map<std::string, std::string> values;
  if (!FileManager::fileExistsAtPath(path)) return values;
  std::optional<std::string> bytes = FileManager::contentsAtPath(path);
  if (!bytes) return std::nullopt;
  const Result<JSONDocument> document = JSONDocument::parse(std::move(*bytes));
  if (!document || document->root().type() != JSONType::Object) return std::nullopt;
  for (const auto& [key, value] : document->root().members()) values.emplace(key, value.text());
  return values;
}

std::string encoded(const std::map<std::string, std::string>& values) {
  JSONWriter writer;
  writer.beginObject();
  for (const auto& [key, json] : values) writer.key(key).raw(json);
  return writer.endObject().take();
}

}  // namespace

NSUserDefaults& NSUserDefaults::standardUserDefaults() {
  // Never destroyed: it writes when the process exits.
  static NSUserDefaults& defaults = *new NSUserDefaults;  // NOLINT(cppcoreguidelines-owning-memory)
  return defaults;
}

NSUserDefaults::FileVersion NSUserDefaults::versionOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_size};
}

// Reads the file again when another process has replaced it, or when the host has chosen another Library.
void NSUserDefaults::followLibrary() {
  const std::optional<std::string> library = NSSearchPathForLibraryDirectory();
  const std::string path = library ? *library + "/Preferences/defaults.json" : "";
  if (path != path_) {
    write();
    pending_.clear();
    stored_.clear();
    version_ = {};
    path_ = path;
  }
  if (path_.empty()) return;
  const FileVersion version = versionOf(path_);
  if (version == version_) return;
  stored_ = readValues(path_).value_or(Values{});
  version_ = version;
}

std::optional<std::string> NSUserDefaults::valueForKey(const std::string& key) {
  const std::lock_guard lock(mutex_);
  followLibrary();
  for (const Values* values : {&pending_, &stored_})
    if (const auto found = values->find(key); found != values->end()) return found->second;
  return std::nullopt;
}

std::optional<std::string> NSUserDefaults::stringForKey(const std::string& key) {
  const std::optional<std::string> json = valueForKey(key);
  if (!json) return std::nullopt;
  const Result<JSONDocument> document = JSONDocument::parse(*json);
  if (!document) return std::nullopt;
  const auto text = document->root().string();
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<double> NSUserDefaults::doubleForKey(const std::string& key) {
  const std::optional<std::string> json = valueForKey(key);
  if (!json) return std::nullopt;
  const Result<JSONDocument> document = JSONDocument::parse(*json);
  return document ? document->root().number() : std::nullopt;
}

void NSUserDefaults::setString(const std::string& key, const std::string& value) {
  setValue(key, JSONWriter().string(value).take());
}

void NSUserDefaults::setDouble(const std::string& key, double value) {
  setValue(key, JSONWriter().number(value).take());
}

void NSUserDefaults::setValue(const std::string& key, std::string json) {
  const std::lock_guard lock(mutex_);
  followLibrary();
  pending_[key] = std::move(json);
  if (idleHandlerSet_) return;
  MainQueue::shared().setIdleHandler([] { standardUserDefaults().synchronize(); });
  std::atexit([] { standardUserDefaults().synchronize(); });
  idleHandlerSet_ = true;
}

bool NSUserDefaults::synchronize() {
  const std::lock_guard lock(mutex_);
  try {
    return write();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool NSUserDefaults::write() {
  if (pending_.empty()) return true;
  if (path_.empty()) return false;
  const std::string directory = path_.substr(0, path_.rfind('/'));
  if (FileManager::createDirectoryAtPath(directory)) return false;
  // Not to be had in time: written all the same, as what was told to be stored would be lost otherwise.
  const std::optional<FileLock> lock = FileLock::take(path_ + ".lock");
  std::optional<Values> values = readValues(path_);
  // A file that cannot be understood is kept for whoever wants to look.
  if (!values) rename(path_.c_str(), (path_ + ".unreadable").c_str());
  Values merged = pending_;
  if (values) merged.merge(*values);
  if (FileManager::writeAtomically(encoded(merged), path_)) return false;
  stored_ = std::move(merged);
  pending_.clear();
  version_ = versionOf(path_);
  return true;
}

}  // namespace quellaro
