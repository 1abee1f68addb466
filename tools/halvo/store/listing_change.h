#pragma once

#include <optional>
#include <string>

#include "platform/foundation/error.h"
#include "store/publication.h"
#include "store/signing_key.h"
#include "store/store_config.h"
#include "store/stored_sets.h"

namespace halvo {

struct ChangeOptions {
  bool dryRun = false;  // tells what would be done, and whether it could be; nothing is made
  std::optional<SigningKey> key;
  // For another who is changing the store.
  std::int64_t patienceSeconds = 60;
};

// What a change of a store came to.
struct Change {
  Publication publication;
  std::string path;        // of the set, relative to the store
  bool isCopied = false;   // its files were not there before
  bool isSigned = false;   // the entry is
  bool wasSigned = false;  // an entry that it takes the place of was
  bool wasListed = false;  // nothing has changed
};

// Lets version_config.json list the cue so, in one step.
std::optional<quellaro::NSError> list(const std::string& store, const StoreConfig& config,
                                      const Publication& publication, const quellaro::QLHalvoVersionCue& listing);

// The same for a set that is in the store already, under its own path. With a key it is signed anew.
quellaro::Result<Change> listAgain(const std::string& store, const StoreConfig& config, const StoredSet& set,
                                   const Publication& publication, const ChangeOptions& options);

// Whether any entry that the publication takes the place of is signed.
bool isSignedFor(const StoreConfig& config, const Publication& publication);

}  // namespace halvo
