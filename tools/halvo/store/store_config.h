#pragma once

#include <string>
#include <utility>
#include <vector>

#include "assets/version_config.h"
#include "platform/foundation/json/json_reader.h"
#include "store/publication.h"

namespace halvo {

// The version_config.json of a store.
class StoreConfig {
 public:
  // A file that is not there lists nothing. One that devices could not read is an error: what it lists is not to be
  // lost.
  static quellaro::Result<StoreConfig> read(const std::string& path);
  static quellaro::Result<StoreConfig> parse(std::string text);

  const std::vector<quellaro::QLHalvoVersionConfig>& entries() const { return entries_; }
  // Whether all of the publication's library versions get this version of the cue already.
  bool lists(const Publication& publication) const;
  // The text of the file with the cue listed so for the publication's library versions, and for no others. An entry
  // that also serves others is split; versions that no entry serves yet get one of their own, with the analytics of the
  // first.
  std::string with(const Publication& publication, const quellaro::QLHalvoVersionCue& listing) const;

 private:
  StoreConfig(quellaro::JSONDocument document, std::vector<quellaro::QLHalvoVersionConfig> entries)
      : document_(std::move(document)), entries_(std::move(entries)) {}
  quellaro::JSONDocument document_;
  std::vector<quellaro::QLHalvoVersionConfig> entries_;
};

}  // namespace halvo
