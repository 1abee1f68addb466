#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "assets/set_signature.h"
#include "platform/foundation/error.h"
#include "store/store_config.h"

namespace halvo {

// A directory of a store that holds files of a cue.
struct StoredSet {
  std::string path;  // relative to the store
  std::string cue;   // as it was published, or as its directories are called
  std::string version;
  quellaro::SetSignature signature;   // empty when it was not signed
  std::vector<std::string> missing;   // of the four files
  std::uint64_t bytes = 0;            // of all files
  bool holdsOthers = false;           // files or directories that are no part of a set
  std::int64_t lastUsed = 0;          // seconds since 1970: when it was written, or last listed
  std::vector<std::string> listedAs;  // "quellaro 7", for each entry that lists it
  bool isNeeded = false;              // listed, or a set that is listed links to its files

  bool isComplete() const { return missing.empty(); }
};

// What lies in a store.
struct Inventory {
  std::vector<StoredSet> sets;          // by path
  std::vector<std::string> unfinished;  // what killed processes have left, by path
  std::vector<std::string> problems;    // what could not be looked at
};

// Looks through all directories but hidden ones; symbolic links are not followed, but a set that is listed by way of
// one counts as listed.
Inventory takeInventory(const std::string& store, const StoreConfig& config);

// Those that were published or are listed as this version of the cue.
std::vector<const StoredSet*> setsNamed(const Inventory& inventory, const std::string& cue, const std::string& version);

// version_config.json of a store that is to be there. A directory without one is no store.
quellaro::Result<StoreConfig> readStore(const std::string& store);

}  // namespace halvo
