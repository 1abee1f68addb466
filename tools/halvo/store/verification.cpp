#include "store/verification.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <tuple>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "assets/set_signature.h"
#include "check/cue.h"
#include "check/output.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/durable_files.h"

namespace halvo {

namespace {

using namespace quellaro;
namespace fs = std::filesystem;

// Where what has been fetched is looked at. Goes with the object.
class Workplace {
 public:
  Workplace() {
    std::error_code ignored;
    path_ = (fs::temp_directory_path(ignored) / "halvo-verify-XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) path_.clear();
  }
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;
  ~Workplace() {
    if (!path_.empty()) FileManager::removeItemAtPath(path_);
  }
  // Empty when there is none.
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

void append(std::vector<Remark>& remarks, std::vector<Remark> more) {
  for (Remark& remark : more) {
    // A directory on the way is the same for all files.
    const bool isKnown = std::any_of(remarks.begin(), remarks.end(), [&](const Remark& known) {
      return known.place == remark.place && known.what == remark.what;
    });
    if (!isKnown) remarks.push_back(std::move(remark));
  }
}

// As the player reads it: what `halvo check` has found is told in a line each of errors, and one for the rest.
void checkPlayable(const std::string& directory, const Listing& listing, std::vector<Remark>& remarks) {
  Report report;
  checkSource(directory, report, {});
  const std::size_t warnings = report.count(Severity::Warning);
  for (const FindingGroup* group : report.groups())
    if (const FindingKind& kind = kindOf(group->first.id); kind.severity == Severity::Error)
      remarks.push_back({Severity::Error, listing.filepath + "/" + placeOf(group->first), group->first.what,
                         std::string(kind.instead)});
  if (warnings > 0)
    remarks.push_back({Severity::Warning, listing.filepath,
                       std::to_string(warnings) + " warnings of 'halvo check', which tells them"});
}

void checkSignature(const std::string& directory, const Listing& listing, const std::optional<std::string>& publicKey,
                    std::vector<Remark>& remarks) {
  if (publicKey) {
    const SetSignature& signature = listing.signature;
    if (const auto problem = signatureProblem(signature, *publicKey, listing.cue, listing.version, directory))
      remarks.push_back({Severity::Error, listing.filepath, problem->localizedDescription,
                         "devices that know this key do not take it: publish it with --sign"});
    return;
  }
  for (const auto& [file, digest] : listing.signature.sha256)
    if (std::find(kCueFiles.begin(), kCueFiles.end(), file) != kCueFiles.end() &&
        sha256OfFile(inDirectory(directory, file)) != digest)
      remarks.push_back({Severity::Error, listing.filepath + "/" + file, "it is not the file that was signed"});
}

VerifiedCue verifyCue(StoreSource& source, const Listing& listing, const VerifyOptions& options,
                      std::vector<Remark>& allRemarks) {
  VerifiedCue cue{listing, 0, false};
  std::vector<std::string> paths;
  paths.reserve(kCueFiles.size());
  for (const char* file : kCueFiles) paths.push_back(listing.filepath + "/" + file);
  std::vector<Remark> remarks;
  const Workplace workplace;
  bool isWhole = true;
  const std::vector<StoreAnswer> answers = source.get(paths);
  for (std::size_t i = 0; i < answers.size(); ++i) {
    append(remarks, answers[i].remarks);
    isWhole = isWhole && answers[i].data.has_value();
    if (!answers[i].data) continue;
    cue.bytes += answers[i].data->size();
    const auto problem = FileManager::writeAtomically(*answers[i].data, workplace.path() + "/" + kCueFiles[i]);
    if (!workplace.path().empty() && !problem) continue;
    remarks.push_back({Severity::Error, paths[i], "there is no room to look at it"});
    isWhole = false;
  }
  if (isWhole) {
    checkPlayable(workplace.path(), listing, remarks);
    checkSignature(workplace.path(), listing, options.publicKey, remarks);
  }
  cue.isFine = std::none_of(remarks.begin(), remarks.end(),
                            [](const Remark& remark) { return remark.severity == Severity::Error; });
  append(allRemarks, std::move(remarks));
  return cue;
}

// Those that one of the library versions gets, with these versions alone.
std::vector<Listing> wantedListings(const std::vector<QLHalvoVersionConfig>& entries, const VerifyOptions& options,
                                    std::vector<Remark>& remarks) {
  std::vector<Listing> listings = listingsOf(entries);
  if (options.sdkVersions.empty()) return listings;
  for (const std::string& version : options.sdkVersions)
    if (!selectForSdkVersion(entries, version))
      remarks.push_back({Severity::Error, kVersionConfigFile, "no entry lists library version " + printable(version),
                         "without one its devices cannot prepare any cue"});
  for (Listing& listing : listings)
    std::erase_if(listing.sdkVersions, [&](const std::string& version) {
      return std::find(options.sdkVersions.begin(), options.sdkVersions.end(), version) == options.sdkVersions.end();
    });
  std::erase_if(listings, [](const Listing& listing) { return listing.sdkVersions.empty(); });
  return listings;
}

}  // namespace

std::size_t Verification::count(Severity severity) const {
  return static_cast<std::size_t>(
      std::count_if(remarks.begin(), remarks.end(), [&](const Remark& remark) { return remark.severity == severity; }));
}

Verification verifyStore(StoreSource& source, const VerifyOptions& options) {
  Verification verification;
  std::vector<Remark>& remarks = verification.remarks;
  StoreAnswer answer = source.get({kVersionConfigFile}).front();
  append(remarks, std::move(answer.remarks));
  if (!answer.data) return verification;
  const auto entries = decodeVersionConfigs(std::move(*answer.data));
  if (!entries) {
    remarks.push_back(
        {Severity::Error, kVersionConfigFile, "devices cannot read it: " + entries.error().localizedDescription});
    return verification;
  }
  append(remarks, remarksOn(*entries));
  append(remarks, source.lookAround());
  // Several entries may list one set.
  std::map<std::tuple<std::string, std::string, std::string, std::string>, VerifiedCue> known;
  for (const Listing& listing : wantedListings(*entries, options, remarks)) {
    const auto key = std::tuple(listing.filepath, listing.cue, listing.version, listing.signature.signature);
    auto found = known.find(key);
    if (found == known.end()) found = known.emplace(key, verifyCue(source, listing, options, remarks)).first;
    verification.cues.push_back({listing, found->second.bytes, found->second.isFine});
  }
  return verification;
}

}  // namespace halvo
