#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "check/report.h"
#include "platform/foundation/json/json_writer.h"
#include "store/arguments.h"
#include "store/listing.h"
#include "store/signing_key.h"
#include "store/store_commands.h"
#include "store/verification.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::int64_t kDevicesPatience = 60;

void printJson(const std::string& store, const Verification& verification) {
  JSONWriter writer;
  writer.beginObject().key("store").string(store);
  writer.key("errors").integer(static_cast<std::int64_t>(verification.count(Severity::Error)));
  writer.key("warnings").integer(static_cast<std::int64_t>(verification.count(Severity::Warning)));
  writer.key("cues").beginArray();
  for (const VerifiedCue& cue : verification.cues) {
    writer.beginObject().key("cue").string(cue.listing.cue).key("version").string(cue.listing.version);
    writer.key("filepath").string(cue.listing.filepath);
    writeTexts(writer, "sdkVersions", cue.listing.sdkVersions);
    writer.key("bytes").integer(static_cast<std::int64_t>(cue.bytes)).key("signed").boolean(cue.listing.isSigned());
    writer.key("fine").boolean(cue.isFine).endObject();
  }
  writer.endArray().key("findings").beginArray();
  for (const Remark& remark : verification.remarks)
    writer.beginObject()
        .key("severity")
        .string(nameOf(remark.severity))
        .key("place")
        .string(remark.place)
        .key("what")
        .string(remark.what)
        .key("instead")
        .string(remark.instead)
        .endObject();
  std::puts(writer.endArray().endObject().text().c_str());
}

void printReadably(const Verification& verification) {
  for (const Remark& remark : verification.remarks) {
    std::printf("%s: %s: %s\n", std::string(nameOf(remark.severity)).c_str(), printable(remark.place, 200).c_str(),
                printable(remark.what, 400).c_str());
    if (!remark.instead.empty()) std::printf("  instead: %s\n", printable(remark.instead, 400).c_str());
  }
  for (const VerifiedCue& cue : verification.cues)
    std::printf("%s version %s for library version %s at %s: %s%s, %s\n", printable(cue.listing.cue).c_str(),
                printable(cue.listing.version).c_str(), printable(joined(cue.listing.sdkVersions), 200).c_str(),
                printable(cue.listing.filepath, 200).c_str(), sizeText(cue.bytes).c_str(),
                cue.listing.isSigned() ? ", signed" : "", cue.isFine ? "fine" : "devices do not get it");
  std::printf("%zu errors, %zu warnings\n", verification.count(Severity::Error), verification.count(Severity::Warning));
}

}  // namespace

int storeVerify(int argc, char** argv) {
  VerifyOptions options;
  std::string key;
  std::int64_t patience = kDevicesPatience;
  bool json = false;
  CommandLine commandLine;
  commandLine.usage = "store verify STORE|URL [--sdk-version V...] [--key KEY] [--json]";
  commandLine.summary =
      "Looks whether devices get what a store lists: a directory, or an address, which is asked as devices ask it. "
      "Every\n"
      "listed file has to be there, for others to read, and every set whole and such that the player can prepare it.\n"
      "Tells what a server answers to a request for a missing file, and of redirects. URL is what \"versionConfigUrl\" "
      "in\n"
      "Info.json says. Exit status: 0 without errors (warnings at most), 1 with them, 2 unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"sdk-version", "V", "only what this library version gets, as often as needed (all)",
       [&](const std::string& value) { return addSdkVersion(value, options.sdkVersions); }},
      {"key", "KEY", "every set has to be signed with this key: the public one, or a file that holds it", setText(key)},
      {"timeout", "SECONDS", "how long a server may be silent (60, as devices have it)",
       setNumber(patience, 1, kDevicesPatience * kDevicesPatience)},
      {"json", "", "one line of JSON", setFlag(json)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (!key.empty()) {
    Result<std::string> publicKey = publicKeyOf(key);
    if (!publicKey) return failure(publicKey.error().localizedDescription);
    options.publicKey = std::move(*publicKey);
  }
  const Result<std::unique_ptr<StoreSource>> source = openStoreSource(parsed.positional[0], patience);
  if (!source) return failure(source.error().localizedDescription);
  const Verification verification = verifyStore(**source, options);
  json ? printJson(parsed.positional[0], verification) : printReadably(verification);
  return verification.count(Severity::Error) == 0 ? kExitFine : kExitFailure;
}

}  // namespace halvo
