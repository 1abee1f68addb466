#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "store/listing.h"
#include "store/store_source.h"

namespace halvo {

struct VerifyOptions {
  std::vector<std::string> sdkVersions;  // empty: all that the store lists
  std::optional<std::string> publicKey;  // base64; sets then have to be signed with it
};

// A version of a cue, as a device that is told to fetch it gets it.
struct VerifiedCue {
  Listing listing;
  std::uint64_t bytes = 0;
  bool isFine = false;
};

struct Verification {
  std::vector<VerifiedCue> cues;
  std::vector<Remark> remarks;

  std::size_t count(Severity severity) const;
};

// Fetches version_config.json and everything that it lists, as devices do, and looks at all of it.
Verification verifyStore(StoreSource& source, const VerifyOptions& options);

// The entry that a device of each library version finds is in order by itself: names that can match, versions that can
// differ from what devices start with.
std::vector<Remark> remarksOn(const std::vector<quellaro::QLHalvoVersionConfig>& entries);

}  // namespace halvo
