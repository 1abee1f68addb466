#include "analytics/api_response.h"

#include <string_view>
#include <utility>

#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/json/json_writer.h"

namespace quellaro {

namespace {
constexpr std::string_view kStatus = "status";
constexpr std::string_view kError = "error";
}  // namespace

Result<MixpanelAPIResponse> MixpanelAPIResponse::decode(std::string json) {
  const Result<JSONDocument> document = JSONDocument::parse(std::move(json));
  if (!document) return document.error();
  JSONDecoder decoder(document->root());
  const JSONField root = JSONField::root(decoder);
  MixpanelAPIResponse response;
  response.status = root.required(kStatus).wholeNumber();
  if (const JSONField error = root.optional(kError); error.isPresent()) response.errorMessage = error.string();
  if (decoder.error()) return *decoder.error();
  return response;
}

std::string MixpanelAPIResponse::encode() const {
  JSONWriter writer;
  writer.beginObject().key(kStatus).integer(status);
  if (errorMessage) writer.key(kError).string(*errorMessage);
  return writer.endObject().take();
}

}  // namespace quellaro
