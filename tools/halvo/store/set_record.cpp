#include "store/set_record.h"

#include <utility>

#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/listing.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kLongestRecord = std::size_t{64} << 10;

}  // namespace

std::string encodeSetRecord(const SetRecord& record) {
  JSONWriter writer;
  writer.beginObject().key("cue").string(record.cue).key("version").string(record.version);
  writeSignature(writer, record.signature);
  return writer.endObject().take() + "\n";
}

std::optional<SetRecord> readSetRecord(const std::string& directory) {
  std::optional<std::string> bytes = FileManager::contentsAtPath(directory + "/" + kSetRecordFile, kLongestRecord);
  if (!bytes) return std::nullopt;
  const Result<JSONDocument> document = JSONDocument::parse(std::move(*bytes));
  if (!document) return std::nullopt;
  JSONDecoder decoder(document->root());
  const JSONField json = JSONField::root(decoder);
  SetRecord record{json.required("cue").string(), json.required("version").string(), {}};
  record.signature.signature = json.optional("signature").string();
  if (const JSONField digests = json.optional("sha256"); digests.isPresent())
    for (const auto& [file, digest] : digests.members()) record.signature.sha256.emplace(file, digest.string());
  if (decoder.error()) return std::nullopt;
  return record;
}

}  // namespace halvo
