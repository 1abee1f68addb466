#include "cue_check.h"

#include <array>
#include <optional>
#include <utility>

#include "assets/file_manager.h"
#include "assets/sdk_config.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/corehaptics/haptic_pattern.h"
#include "platform/foundation/file_manager.h"
#include "platform/foundation/json_reader.h"
#include "platform/foundation/limits.h"
#include "platform/foundation/xml_parser.h"

namespace halvo {

namespace {

using namespace quellaro;

// What is wrong with a file, if anything.
using Problem = std::optional<std::string>;

Problem checkFrame(std::string_view text, const std::string& frame) {
  Arena arena(1024);
  NSXMLParser parser(text, arena);
  if (parser.parse()) return std::nullopt;
  const XMLPosition position = parser.positionOf(parser.parserError()->offset);
  return frame + ", line " + std::to_string(position.line) + ", column " + std::to_string(position.column) + ": " +
         std::string(parser.parserError()->message);
}

// A frame without a time would keep the next one from being shown; without the last one's, a play never ends.
Problem checkAnimation(const std::string& json, const QLHalvoSDKConfig& config) {
  const Result<JSONDocument> document = JSONDocument::parse(json);
  if (!document) return document.error().localizedDescription;
  if (document->root().type() != JSONType::Array) return "an array of frames was expected";
  std::size_t number = 0;
  for (const JSONValue& value : document->root().elements()) {
    const std::string frame = "Frame_" + std::to_string(++number);
    const std::optional<std::string_view> text = value.string();
    if (!text) return frame + " is no text";
    if (Problem problem = checkFrame(*text, frame)) return problem;
    const auto time = config.frameTime.find(frame);
    if (time == config.frameTime.end()) return "\"frameTime\" of play_config.json has no " + frame;
    if (time->second < 0) return "\"frameTime\" of play_config.json is negative for " + frame;
  }
  return std::nullopt;
}

// Decodes all of it: what a device would play.
Problem checkSound(const std::string& path) {
  const auto decoder = Mp3Decoder::open(path);
  if (!decoder) return decoder.error().localizedDescription;
  std::array<float, 8192> samples;
  bool isEmpty = true;
  while (true) {
    const Result<std::size_t> count = (*decoder)->read(samples);
    if (!count) return count.error().localizedDescription;
    if (*count == 0) break;
    isEmpty = false;
  }
  return isEmpty ? Problem("there is no sound in it") : std::nullopt;
}

Problem checkHaptics(const std::string& json) {
  const Result<JSONDocument> document = JSONDocument::parse(json);
  if (!document) return document.error().localizedDescription;
  if (document->root().type() != JSONType::Object) return "an object was expected";
  const auto pattern = CHHapticPattern::initWithDictionary(document->root());
  return pattern ? Problem() : pattern.error().localizedDescription;
}

Problem checkFile(const std::string& directory, const std::string& name, const CueFiles& files,
                  const QLHalvoSDKConfig& config) {
  if (name == kSoundFile) return checkSound(directory + "/" + name);
  if (name == kAnimationFile) return checkAnimation(files.at(name), config);
  if (name == kHapticsFile) return checkHaptics(files.at(name));
  return std::nullopt;
}

NSError errorIn(const std::string& path, const std::string& problem) { return {"halvo", 0, path + ": " + problem}; }

}  // namespace

Result<CueFiles> readPlayableCue(const std::string& directory) {
  CueFiles files;
  for (const char* name : kCueFiles) {
    const std::string path = directory + "/" + name;
    // What is larger than a device takes from the network would never arrive.
    Result<std::string> bytes = FileManager::readAtPath(path, limits::kResponseBytes);
    if (!bytes) return errorIn(path, bytes.error().localizedDescription);
    if (bytes->empty()) return errorIn(path, "it is empty, which a device takes for missing");
    files[name] = std::move(*bytes);
  }
  const auto config = decodeSDKConfig(files[kPlayConfigFile]);
  if (!config) return errorIn(directory + "/" + kPlayConfigFile, config.error().localizedDescription);
  for (const char* name : kCueFiles)
    if (const Problem problem = checkFile(directory, name, files, **config))
      return errorIn(directory + "/" + name, *problem);
  return files;
}

}  // namespace halvo
