#include <sys/stat.h>

#include <utility>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/durable_files.h"
#include "store/listed_path.h"
#include "store/store_source.h"

namespace halvo {

namespace {

using namespace quellaro;

class DirectorySource final : public StoreSource {
 public:
  explicit DirectorySource(std::string store) : store_(std::move(store)) {}

  std::vector<StoreAnswer> get(const std::vector<std::string>& paths) override {
    std::vector<StoreAnswer> answers;
    answers.reserve(paths.size());
    for (const std::string& path : paths) answers.push_back(read(path));
    return answers;
  }

  std::vector<Remark> lookAround() override {
    std::vector<Remark> remarks;
    checkMode("", remarks);
    return remarks;
  }

 private:
  StoreAnswer read(const std::string& filepath) const {
    const auto refused = [&](const std::string& what) {
      return StoreAnswer{std::nullopt, {{Severity::Error, filepath, what}}};
    };
    const auto path = listedDirectory(filepath);
    if (!path) return refused("this is no path within a store");
    const std::string file = inDirectory(store_, *path);
    if (!FileManager::fileExistsAtPath(file)) return refused("it is not there");
    if (!realPathWithin(store_, file)) return refused("it is a link that leads out of the store");
    // What is larger than a device takes from the network would never arrive.
    Result<std::string> bytes = FileManager::readAtPath(file, limits::kResponseBytes);
    if (!bytes) return refused(bytes.error().localizedDescription);
    if (bytes->empty()) return refused("it is empty, which a device takes for missing");
    StoreAnswer answer{std::move(*bytes), {}};
    for (std::size_t slash = path->find('/'); slash != std::string::npos; slash = path->find('/', slash + 1))
      checkMode(path->substr(0, slash), answer.remarks);
    checkMode(*path, answer.remarks);
    return answer;
  }

  // That whoever serves the store can read it.
  void checkMode(const std::string& path, std::vector<Remark>& remarks) const {
    struct stat status {};
    if (stat(path.empty() ? store_.c_str() : inDirectory(store_, path).c_str(), &status) != 0) return;
    const mode_t needed = S_ISDIR(status.st_mode) ? S_IROTH | S_IXOTH : S_IROTH;
    if ((status.st_mode & needed) != needed)
      remarks.push_back({Severity::Error, path.empty() ? store_ : path, "others cannot read it",
                         S_ISDIR(status.st_mode) ? "chmod 755" : "chmod 644"});
  }

  std::string store_;
};

}  // namespace

std::unique_ptr<StoreSource> openDirectorySource(const std::string& store) {
  return std::make_unique<DirectorySource>(store);
}

}  // namespace halvo
