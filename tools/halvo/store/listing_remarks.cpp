#include <set>

#include "check/report.h"
#include "store/verification.h"
#include "types/cue_name.h"

namespace halvo {

namespace {

using namespace quellaro;

void look(const std::string& name, const QLHalvoVersionCue& cue, std::vector<Remark>& remarks) {
  const std::string shown = printable(name);
  if (name != normalisedCueName(name))
    remarks.push_back({Severity::Error, shown, "no device asks for a cue of this name",
                       "write " + printable(normalisedCueName(name))});
  if (cue.version == "0")
    remarks.push_back({Severity::Error, shown, "version 0 is that of devices that have never downloaded the cue",
                       "choose another name for the version"});
  if (cue.version == "")
    remarks.push_back({Severity::Error, shown, "a version without a name is that of a set that a device has discarded",
                       "choose another name for the version"});
}

}  // namespace

std::vector<Remark> remarksOn(const std::vector<QLHalvoVersionConfig>& entries) {
  std::vector<Remark> remarks;
  std::set<std::string> served;
  if (entries.empty())
    remarks.push_back({Severity::Error, "version_config.json", "it lists nothing: no device can prepare any cue"});
  for (const QLHalvoVersionConfig& entry : entries) {
    for (const std::string& version : *entry.sdkVersions)
      if (!served.insert(version).second)
        remarks.push_back({Severity::Warning, "version_config.json",
                           "library version " + printable(version) + " is in more than one entry: the first counts"});
    if (entry.analytics->enabled == true && entry.analytics->url == "")
      remarks.push_back(
          {Severity::Warning, "version_config.json", "usage is counted, but there is no address to send it to"});
    for (const auto& [name, cue] : *entry.cues) look(name, cue, remarks);
  }
  return remarks;
}

}  // namespace halvo
