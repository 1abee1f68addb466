#include "store/playable_cue.h"

#include <utility>

#include "assets/halvo_file_manager.h"
#include "check/cue.h"
#include "check/output.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

NSError errorIn(const std::string& path, const std::string& problem) { return {"halvo", 0, path + ": " + problem}; }

Result<CueFiles> readFiles(const std::string& directory) {
  CueFiles files;
  for (const char* name : kCueFiles) {
    const std::string path = directory + "/" + name;
    // What is larger than a device takes from the network would never arrive.
    Result<std::string> bytes = FileManager::readAtPath(path, limits::kResponseBytes);
    if (!bytes) return errorIn(path, bytes.error().localizedDescription);
    if (bytes->empty()) return errorIn(path, "it is empty, which a device takes for missing");
    files[name] = std::move(*bytes);
  }
  return files;
}

}  // namespace

// Read twice, so that what is published and what is checked do not take memory at the same time.
Result<PlayableCue> readPlayableCue(const std::string& directory) {
  if (const auto files = readFiles(directory); !files) return files.error();
  Report report;
  checkSource(directory, report, {});
  // The most severe is the first.
  if (report.count(Severity::Error) == 0) {
    Result<CueFiles> files = readFiles(directory);
    if (!files) return files.error();
    return PlayableCue{std::move(*files), report.count(Severity::Warning)};
  }
  const Finding& first = report.groups().front()->first;
  return errorIn(directory + "/" + placeOf(first), first.what);
}

}  // namespace halvo
