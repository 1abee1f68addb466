#include "platform/foundation/application.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>

namespace quellaro {

namespace {

// For applications without an identifier, so that XDG_DATA_HOME itself stays clean.
constexpr std::string_view kSharedDirectory = "quellaro-halvo";

struct Application {
  std::mutex mutex;
  std::optional<std::string> identifier;
  std::optional<std::string> libraryDirectory;
};

Application& application() {
  static Application& shared = *new Application;  // NOLINT(cppcoreguidelines-owning-memory): outlives all users at exit
  return shared;
}

std::optional<std::string> absoluteEnvironmentPath(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return value;
}

std::optional<std::string> dataHome() {
  if (auto path = absoluteEnvironmentPath("XDG_DATA_HOME")) return path;
  const auto home = absoluteEnvironmentPath("HOME");
  if (!home) return std::nullopt;
  return *home + "/.local/share";
}

// Failing is left to whoever uses the directory: it has the better message.
void makePrivateDirectory(const std::string& path) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  mkdir(path.c_str(), 0700);
}

std::string withoutSlashAtEnd(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

std::optional<NSError> setApplicationIdentifier(std::optional<std::string> identifier) {
  if (identifier) {
    const bool unusable = identifier->find('/') != std::string::npos || identifier->find("..") != std::string::npos ||
                          identifier->find('\0') != std::string::npos || *identifier == ".";
    if (unusable)
      return NSError{"NSCocoaErrorDomain", 0,
                     "The application identifier \"" + *identifier + "\" cannot name a directory"};
  }
  const std::lock_guard lock(application().mutex);
  application().identifier = std::move(identifier);
  return std::nullopt;
}

std::optional<std::string> applicationIdentifier() {
  const std::lock_guard lock(application().mutex);
  return application().identifier;
}

void setLibraryDirectory(std::optional<std::string> path) {
  if (path) {
    std::error_code code;
    const std::filesystem::path absolute = std::filesystem::absolute(*path, code);
    if (!code) path = absolute.string();
  }
  const std::lock_guard lock(application().mutex);
  application().libraryDirectory = std::move(path);
}

std::optional<std::string> libraryDirectoryPath() {
  const std::lock_guard lock(application().mutex);
  if (application().libraryDirectory) return withoutSlashAtEnd(*application().libraryDirectory);
  const auto home = dataHome();
  if (!home) return std::nullopt;
  const std::string identifier = application().identifier.value_or("");
  return withoutSlashAtEnd(*home) + "/" + (identifier.empty() ? std::string(kSharedDirectory) : identifier);
}

std::optional<std::string> NSSearchPathForLibraryDirectory() {
  std::optional<std::string> path = libraryDirectoryPath();
  if (path) makePrivateDirectory(*path);
  return path;
}

}  // namespace quellaro
