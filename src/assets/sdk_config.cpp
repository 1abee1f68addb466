#include "assets/sdk_config.h"

#include <utility>

#include "platform/foundation/json/json_decoder.h"

namespace quellaro {

std::optional<double> QLHalvoSDKConfig::secondsOfFrame(std::size_t index) const {
  constexpr double kMillisPerSecond = 1000.0;
  const auto time = frameTime.find("Frame_" + std::to_string(index + 1));
  if (time == frameTime.end()) return std::nullopt;
  return time->second / kMillisPerSecond;
}

Result<std::shared_ptr<const QLHalvoSDKConfig>> decodeSDKConfig(std::string json) {
  const Result<JSONDocument> document = JSONDocument::parse(std::move(json));
  if (!document) return document.error();
  JSONDecoder decoder(document->root());
  const JSONField root = JSONField::root(decoder);

  auto config = std::make_shared<QLHalvoSDKConfig>();
  config->totalFrames = root.required("totalFrames").wholeNumber();
  if (const JSONField prefix = root.optional("svgPreFix"); prefix.isPresent()) config->svgPreFix = prefix.string();
  config->soundFileName = root.required("soundFileName").string();
  config->soundDelayInMillis = root.required("soundDelayInMillis").number();
  config->animationDelayInMillis = root.required("animationDelayInMillis").number();
  for (const auto& [frame, milliseconds] : root.required("frameTime").members())
    config->frameTime.emplace(frame, milliseconds.number());
  config->viewBox = root.required("viewBox").string();
  const JSONField haptics = root.optional("isHapticsSupported");
  config->isHapticsSupported = haptics.isPresent() && haptics.boolean();

  if (decoder.error()) return *decoder.error();
  return std::shared_ptr<const QLHalvoSDKConfig>(std::move(config));
}

}  // namespace quellaro
