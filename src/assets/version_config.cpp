#include "assets/version_config.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/json/json_decoder.h"

namespace quellaro {

namespace {

SetSignature signatureOf(const std::optional<JSONValue>& cue) {
  SetSignature signature;
  if (!cue) return signature;
  if (const auto text = cue->member("signature")) signature.signature = text->string().value_or("");
  if (const auto digests = cue->member("sha256"))
    for (const auto& [file, digest] : digests->members()) signature.sha256.emplace(file, digest.string().value_or(""));
  return signature;
}

QLHalvoVersionCue decodeCue(const JSONField& json) {
  return {.version = json.required("version").string(),
          .filepath = json.required("filepath").string(),
          .signature = signatureOf(json.value())};
}

QLHalvoAnalyticsInfo decodeAnalytics(const JSONField& json) {
  return {.enabled = json.required("enable").boolean(),
          .frequency = json.required("frequency").string(),
          .url = json.required("url").string()};
}

QLHalvoVersionConfig decodeEntry(const JSONField& json) {
  QLHalvoVersionConfig entry;
  entry.sdkVersions = json.required("sdk_versions").strings();
  entry.cues.emplace();
  for (const auto& [name, cue] : json.required("cues").members()) entry.cues->emplace(name, decodeCue(cue));
  entry.analytics = decodeAnalytics(json.required("analytics"));
  return entry;
}

}  // namespace

Result<std::vector<QLHalvoVersionConfig>> decodeVersionConfigs(std::string json) {
  const Result<JSONDocument> document = JSONDocument::parse(std::move(json));
  if (!document) return document.error();
  JSONDecoder decoder(document->root());
  std::vector<QLHalvoVersionConfig> entries;
  for (const JSONField& entry : JSONField::root(decoder).elements()) {
    entries.push_back(decodeEntry(entry));
    if (decoder.error()) break;
  }
  if (decoder.error()) return *decoder.error();
  return entries;
}

std::optional<QLHalvoVersionConfig> selectForSdkVersion(const std::vector<QLHalvoVersionConfig>& entries,
                                                        const std::string& sdkVersion) {
  for (const QLHalvoVersionConfig& entry : entries) {
    if (!entry.sdkVersions) continue;
    const auto& listed = *entry.sdkVersions;
    if (std::find(listed.begin(), listed.end(), sdkVersion) != listed.end()) return entry;
  }
  return std::nullopt;
}

}  // namespace quellaro
