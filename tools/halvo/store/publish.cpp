#include <chrono>
#include <cstdio>
#include <string>

#include "assets/halvo_utility.h"
#include "commands.h"
#include "options.h"
#include "store/arguments.h"
#include "store/asset_store.h"
#include "store/listing.h"
#include "store/playable_cue.h"

namespace halvo {

namespace {

using namespace quellaro;

// Says how far it is, once a second; nothing for what is done within the first.
Progress reportOnStandardError() {
  using Clock = std::chrono::steady_clock;
  return [last = Clock::now()](std::size_t written, std::size_t total) mutable {
    if (Clock::now() - last < std::chrono::seconds(1)) return;
    last = Clock::now();
    std::fprintf(stderr, "halvo publish: %zu of %zu MB written (%zu %%)\n", written >> 20, total >> 20,
                 written * 100 / total);
  };
}

int run(const std::string& cueDirectory, const std::string& store, const Publication& publication,
        const ChangeOptions& options) {
  const Result<PlayableCue> cue = readPlayableCue(cueDirectory);
  if (!cue) return failure("not published: " + cue.error().localizedDescription);
  const Result<Change> change = publishIntoStore(store, publication, cue->files, options, reportOnStandardError());
  if (!change) return failure("not published: " + change.error().localizedDescription);
  std::printf("%s version %s of %s for library version %s at %s%s\n", options.dryRun ? "would publish" : "published",
              publication.version.c_str(), publication.cue.c_str(), joined(publication.sdkVersions).c_str(),
              change->path.c_str(), change->isCopied ? "" : ", which is there already");
  if (change->wasSigned && !change->isSigned)
    tell(
        "this version is not signed, and the one before was: devices that check signatures would stay with what they "
        "have");
  std::fflush(stdout);
  if (cue->warnings > 0)
    tell(std::to_string(cue->warnings) + (cue->warnings == 1 ? " warning" : " warnings") + ": 'halvo check " +
         cueDirectory + "' tells");
  if (!options.dryRun) tellHowToUpload(store);
  return kExitFine;
}

}  // namespace

int publish(int argc, char** argv) {
  std::string store;
  std::string keyFile;
  Publication publication;
  ChangeOptions options;
  CommandLine commandLine;
  commandLine.usage = "publish CUE_DIR --store DIR --cue NAME --version V [--sdk-version V...] [options]";
  commandLine.summary =
      "Publishes the four files of a cue in a directory that any static file server can serve to devices: the files\n"
      "under a path of their own, then version_config.json, which lists them. What else it lists stays. A cue that is\n"
      "incomplete or cannot be played is refused, and so is a version that is there with other content. Exit status:\n"
      "0 published, 1 refused or failed (nothing has changed for devices), 2 unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"store", "DIR", "the store's directory, made when it is missing", setText(store)},
      {"cue", "NAME", "the cue's name; case, blanks, '_' and '-' do not count",
       [&](const std::string& value) { return chooseCue(value, publication.cue); }},
      {"version", "V", "the version's name; a device fetches whatever differs from what it has",
       [&](const std::string& value) { return chooseVersion(value, publication.version); }},
      {"sdk-version", "V", "library version that is to get the cue, as often as needed (this library's)",
       [&](const std::string& value) { return addSdkVersion(value, publication.sdkVersions); }},
  };
  addChangeOptions(commandLine, options, &keyFile);
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (store.empty()) return usageError("publish", "--store is missing");
  if (publication.cue.empty()) return usageError("publish", "--cue is missing");
  if (publication.version.empty()) return usageError("publish", "--version is missing");
  if (publication.sdkVersions.empty()) publication.sdkVersions.push_back(HalvoUtility::sdkVersion());
  if (const auto problem = readKey(keyFile, options)) return failure("not published: " + problem->localizedDescription);
  return run(parsed.positional[0], store, publication, options);
}

}  // namespace halvo
