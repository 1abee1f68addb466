#include "store/listing_change.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "store/durable_files.h"
#include "store/listed_path.h"
#include "store/listing.h"
#include "store/set_record.h"

namespace halvo {

namespace {

using namespace quellaro;

// The week after which `prune` removes a set runs from now on: devices may still be fetching it.
void noteUse(const std::string& store, const std::string& filepath) {
  const auto directory = listedDirectory(filepath);
  if (!directory || !realPathWithin(store, inDirectory(store, *directory))) return;
  utimensat(AT_FDCWD, inDirectory(store, *directory).c_str(), nullptr, 0);
}

// A set that is there, signed anew when there is a key.
Result<SetSignature> signatureOf(const std::string& store, const StoredSet& set, const Publication& publication,
                                 const ChangeOptions& options) {
  const bool isThat = set.cue == publication.cue && set.version == publication.version;
  if (!options.key) return isThat ? set.signature : SetSignature{};
  const std::string directory = inDirectory(store, set.path);
  auto signature = options.key->sign(publication.cue, publication.version, directory);
  if (!signature || options.dryRun) return signature;
  const SetRecord record{publication.cue, publication.version, *signature};
  if (const auto problem = replaceDurably(inDirectory(directory, kSetRecordFile), encodeSetRecord(record)))
    return *problem;
  return signature;
}

}  // namespace

std::optional<NSError> list(const std::string& store, const StoreConfig& config, const Publication& publication,
                            const QLHalvoVersionCue& listing) {
  const std::string path = inDirectory(store, kVersionConfigFile);
  if (std::filesystem::is_symlink(path))
    return NSError{"halvo", 0, path + ": this is a symbolic link, whose place a file would take"};
  const std::string text = config.with(publication, listing);
  const Result<StoreConfig> changed = StoreConfig::parse(text);
  if (!changed) return changed.error();
  std::set<std::string> gone;
  for (const Listing& before : listingsOf(config.entries())) gone.insert(before.filepath);
  for (const Listing& after : listingsOf(changed->entries())) gone.erase(after.filepath);
  for (const std::string& filepath : gone) noteUse(store, filepath);
  return replaceDurably(path, text);
}

bool isSignedFor(const StoreConfig& config, const Publication& publication) {
  const std::vector<Listing> listings = listingsOf(config.entries());
  return std::any_of(listings.begin(), listings.end(), [&](const Listing& listing) {
    return listing.cue == publication.cue && listing.isSigned() &&
           std::find_first_of(listing.sdkVersions.begin(), listing.sdkVersions.end(), publication.sdkVersions.begin(),
                              publication.sdkVersions.end()) != listing.sdkVersions.end();
  });
}

// A set that is there, listed once more.
Result<Change> listAgain(const std::string& store, const StoreConfig& config, const StoredSet& set,
                         const Publication& publication, const ChangeOptions& options) {
  const auto signature = signatureOf(store, set, publication, options);
  if (!signature) return signature.error();
  Change change{publication, set.path, false, !signature->signature.empty(), isSignedFor(config, publication)};
  if (options.dryRun) return change;
  noteUse(store, filepathOf(set.path));
  if (const auto problem = list(store, config, publication, {publication.version, filepathOf(set.path), *signature}))
    return *problem;
  return change;
}

}  // namespace halvo
