#include "store/listing.h"

#include <array>
#include <cstdio>
#include <set>

namespace halvo {

using namespace quellaro;

std::vector<Listing> listingsOf(const std::vector<QLHalvoVersionConfig>& entries) {
  std::vector<Listing> listings;
  std::set<std::string> served;
  for (const QLHalvoVersionConfig& entry : entries) {
    std::vector<std::string> versions;
    for (const std::string& version : *entry.sdkVersions)
      if (served.insert(version).second) versions.push_back(version);
    if (versions.empty()) continue;
    for (const auto& [name, cue] : *entry.cues)
      listings.push_back({versions, name, *cue.version, *cue.filepath, cue.signature});
  }
  return listings;
}

void writeSignature(JSONWriter& writer, const SetSignature& signature) {
  if (signature.signature.empty()) return;
  writer.key("sha256").beginObject();
  for (const auto& [file, digest] : signature.sha256) writer.key(file).string(digest);
  writer.endObject().key("signature").string(signature.signature);
}

void writeTexts(JSONWriter& writer, const char* key, const std::vector<std::string>& texts) {
  writer.key(key).beginArray();
  for (const std::string& text : texts) writer.string(text);
  writer.endArray();
}

std::string joined(const std::vector<std::string>& texts) {
  std::string line;
  for (const std::string& text : texts) line += (line.empty() ? "" : ", ") + text;
  return line;
}

std::string sizeText(std::uint64_t bytes) {
  constexpr double kKilobyte = 1000;
  const auto kilobytes = static_cast<double>(bytes) / kKilobyte;
  std::array<char, 32> text;
  if (kilobytes < kKilobyte)
    std::snprintf(text.data(), text.size(), "%.1f KB", kilobytes);
  else
    std::snprintf(text.data(), text.size(), "%.1f MB", kilobytes / kKilobyte);
  return text.data();
}

}  // namespace halvo
