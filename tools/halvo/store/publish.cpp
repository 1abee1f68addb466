#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

#include "assets/halvo_utility.h"
#include "commands.h"
#include "options.h"
#include "platform/foundation/text/utf8.h"
#include "store/asset_store.h"
#include "store/playable_cue.h"
#include "types/cue_name.h"

namespace halvo {

namespace {

using namespace quellaro;

struct PublishOptions {
  std::string store;
  Publication publication;
};

bool isPlainText(const std::string& text) {
  if (text.empty() || !isValidUTF8(text)) return false;
  for (const char c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == 0x7f) return false;
  return true;
}

std::optional<std::string> chooseCue(const std::string& name, std::string& cue) {
  cue = normalisedCueName(name);
  if (!isPlainText(cue) || cue == "." || cue == ".." || cue.find('/') != std::string::npos)
    return "this names no directory: letters and digits are needed";
  return std::nullopt;
}

std::optional<std::string> chooseVersion(const std::string& text, std::string& version) {
  if (!isPlainText(text)) return "a text is needed";
  if (text == "0") return "devices that have never downloaded a cue call theirs 0, and would not fetch it";
  version = text;
  return std::nullopt;
}

std::optional<std::string> addSdkVersion(const std::string& text, std::vector<std::string>& versions) {
  if (!isPlainText(text)) return "a text is needed";
  versions.push_back(text);
  return std::nullopt;
}

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

int run(const std::string& cueDirectory, const PublishOptions& options) {
  const Result<PlayableCue> cue = readPlayableCue(cueDirectory);
  if (!cue) return failure("not published: " + cue.error().localizedDescription);
  const Result<std::string> path =
      publishIntoStore(options.store, options.publication, cue->files, reportOnStandardError());
  if (!path) return failure("not published: " + path.error().localizedDescription);
  std::string sdkVersions;
  for (const std::string& version : options.publication.sdkVersions)
    sdkVersions += (sdkVersions.empty() ? "" : ", ") + version;
  std::printf("published version %s of %s for library version %s at %s\n", options.publication.version.c_str(),
              options.publication.cue.c_str(), sdkVersions.c_str(), path->c_str());
  std::fflush(stdout);
  if (cue->warnings > 0)
    tell(std::to_string(cue->warnings) + (cue->warnings == 1 ? " warning" : " warnings") + ": 'halvo check " +
         cueDirectory + "' tells");
  return kExitFine;
}

}  // namespace

int publish(int argc, char** argv) {
  PublishOptions options;
  Publication& publication = options.publication;
  CommandLine commandLine;
  commandLine.usage = "publish CUE_DIR --store DIR --cue NAME --version V [--sdk-version V...]";
  commandLine.summary =
      "Publishes the four files of a cue in a directory that any static file server can serve to devices: the files\n"
      "under a path of their own, then version_config.json, which lists them. What else it lists stays. A cue that is\n"
      "incomplete or cannot be played is refused. Exit status: 0 published, 1 refused or failed (nothing has changed\n"
      "for devices), 2 unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"store", "DIR", "the store's directory, made when it is missing", setText(options.store)},
      {"cue", "NAME", "the cue's name; case, blanks, '_' and '-' do not count",
       [&](const std::string& value) { return chooseCue(value, publication.cue); }},
      {"version", "V", "the version's name; a device fetches whatever differs from what it has",
       [&](const std::string& value) { return chooseVersion(value, publication.version); }},
      {"sdk-version", "V", "library version that is to get the cue, as often as needed (this library's)",
       [&](const std::string& value) { return addSdkVersion(value, publication.sdkVersions); }},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (options.store.empty()) return usageError("publish", "--store is missing");
  if (publication.cue.empty()) return usageError("publish", "--cue is missing");
  if (publication.version.empty()) return usageError("publish", "--version is missing");
  if (publication.sdkVersions.empty()) publication.sdkVersions.push_back(HalvoUtility::sdkVersion());
  return run(parsed.positional[0], options);
}

}  // namespace halvo
