#pragma once

#include <string>

#include "platform/foundation/json/json_reader.h"
#include "store/asset_store.h"

namespace halvo {

// The version_config.json of a store.
class StoreConfig {
 public:
  // A file that is not there lists nothing. One that devices could not read is an error: what it lists is not to be
  // lost.
  static quellaro::Result<StoreConfig> read(const std::string& path);

  // Whether all of the publication's library versions get this version of the cue already.
  bool lists(const Publication& publication) const;
  // The text of the file with the cue listed for the publication's library versions, and for no others. An entry that
  // also serves others is split; versions that no entry serves yet get one of their own, with the analytics of the
  // first.
  std::string with(const Publication& publication, const std::string& filepath) const;

 private:
  explicit StoreConfig(quellaro::JSONDocument document) : document_(std::move(document)) {}
  quellaro::JSONDocument document_;
};

}  // namespace halvo
