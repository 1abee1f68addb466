#pragma once

#include <string>
#include <vector>

#include "assets/version_config.h"
#include "platform/foundation/json/json_writer.h"

namespace halvo {

// What version_config.json says of one cue, for some versions of the library.
struct Listing {
  std::vector<std::string> sdkVersions;
  std::string cue;
  std::string version;
  std::string filepath;
  quellaro::SetSignature signature;  // empty when it is not signed

  bool isSigned() const { return !signature.signature.empty(); }
};

// As devices find them: a library version that an earlier entry has already is left out of a later one, and so is an
// entry that no version of the library ever reads.
std::vector<Listing> listingsOf(const std::vector<quellaro::QLHalvoVersionConfig>& entries);

// The two keys, or nothing when there is no signature.
void writeSignature(quellaro::JSONWriter& writer, const quellaro::SetSignature& signature);

void writeTexts(quellaro::JSONWriter& writer, const char* key, const std::vector<std::string>& texts);

// "1.0.0, 1.1.0".
std::string joined(const std::vector<std::string>& texts);

// "2.8 MB".
std::string sizeText(std::uint64_t bytes);

}  // namespace halvo
