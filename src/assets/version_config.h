#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "assets/set_signature.h"
#include "platform/foundation/error.h"

namespace quellaro {

// Where the assets of one cue lie and which version they are; versions are compared for equality alone.
struct QLHalvoVersionCue {
  std::optional<std::string> version;
  // Below the base address of the remote asset store. It only ever forms an address.
  std::optional<std::string> filepath;
  // Empty, in whole or in part, when the entry has none or none of the right types, which fails nothing.
  SetSignature signature;
};

// How usage is counted and sent.
struct QLHalvoAnalyticsInfo {
  std::optional<bool> enabled;
  // "M" gives monthly periods, anything else quarterly ones.
  std::optional<std::string> frequency;
  std::optional<std::string> url;
};

// One entry of "version_config.json": what is current for some versions of this library. A decoded entry has every
// field.
struct QLHalvoVersionConfig {
  std::optional<std::vector<std::string>> sdkVersions;
  // By normalised cue name.
  std::optional<std::map<std::string, QLHalvoVersionCue>> cues;
  std::optional<QLHalvoAnalyticsInfo> analytics;
};

// Every key of every entry is required; one that is missing or of the wrong type fails the whole.
Result<std::vector<QLHalvoVersionConfig>> decodeVersionConfigs(std::string json);

// The first entry that lists exactly this version.
std::optional<QLHalvoVersionConfig> selectForSdkVersion(const std::vector<QLHalvoVersionConfig>& entries,
                                                        const std::string& sdkVersion);

}  // namespace quellaro
