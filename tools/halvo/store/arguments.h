#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options.h"
#include "store/listing_change.h"

namespace halvo {

// What the commands on stores have in common.

// `apply` functions' bodies.
std::optional<std::string> chooseCue(const std::string& name, std::string& cue);
std::optional<std::string> chooseVersion(const std::string& text, std::string& version);
std::optional<std::string> addSdkVersion(const std::string& text, std::vector<std::string>& versions);

// --dry-run, --wait and, for `keyFile`, --sign.
void addChangeOptions(CommandLine& commandLine, ChangeOptions& options, std::string* keyFile);
// Reads the key, if one was named, into the options. The error says why not.
std::optional<quellaro::NSError> readKey(const std::string& keyFile, ChangeOptions& options);

// How a store is brought to where it is served, on standard error: version_config.json comes last, or devices would be
// sent to files that are not there yet.
void tellHowToUpload(const std::string& store);

}  // namespace halvo
