#include "check/config.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

struct Key {
  const char* name;
  const char* purpose;
  // Reads it as the player does; what is wrong with it is in the decoder afterwards.
  void (*read)(const JSONField& root, const char* name);
};

void readNumber(const JSONField& root, const char* name) { root.required(name).number(); }
void readText(const JSONField& root, const char* name) { root.required(name).string(); }

constexpr Key kKeys[] = {
    {"totalFrames", "a whole number: how many frames there are",
     [](const JSONField& root, const char* name) { root.required(name).wholeNumber(); }},
    {"svgPreFix", "may be left out; a text that nothing reads",
     [](const JSONField& root, const char* name) {
       if (const JSONField field = root.optional(name); field.isPresent()) field.string();
     }},
    {"soundFileName", "a text: \"audio.mp3\"", readText},
    {"soundDelayInMillis", "a number: milliseconds from the start of a play to that of the sound", readNumber},
    {"animationDelayInMillis", "a number: milliseconds from the start of a play to the first frame", readNumber},
    {"frameTime", "an object: for each frame, under Frame_1, Frame_2 and so on, its milliseconds",
     [](const JSONField& root, const char* name) {
       for (const auto& [frame, milliseconds] : root.required(name).members()) milliseconds.number();
     }},
    {"viewBox", "a text: \"0 0 WIDTH HEIGHT\", which nothing reads", readText},
    {"isHapticsSupported", "may be left out; true or false: whether the cue has a haptic pattern",
     [](const JSONField& root, const char* name) {
       if (const JSONField field = root.optional(name); field.isPresent()) field.boolean();
     }},
};

void tell(Report& report, FindingId id, std::string what, std::string key = "") {
  report.add({id, std::move(what), kPlayConfigFile, std::nullopt, "", "", std::move(key), std::nullopt});
}

void checkKey(const Key& key, JSONValue root, Report& report) {
  JSONDecoder decoder(root);
  key.read(JSONField::root(decoder), key.name);
  if (decoder.error())
    tell(report, FindingId::Config, decoder.error()->localizedDescription + " (" + key.purpose + ")", key.name);
}

// With the key that was meant, where only its capitals are wrong.
void checkName(std::string_view name, Report& report) {
  std::string meant;
  for (const Key& key : kKeys) {
    if (name == key.name) return;
    if (strcasecmp(std::string(name).c_str(), key.name) == 0)
      meant = std::string("; ") + key.name + " is, with other capitals";
  }
  tell(report, FindingId::ConfigKey, "the key \"" + printable(name) + "\" is not known" + meant, printable(name));
}

void checkKeys(JSONValue root, Report& report) {
  if (root.type() == JSONType::Object)
    for (const Key& key : kKeys) checkKey(key, root, report);
  for (const auto& [name, value] : root.members()) checkName(name, report);
  const auto sound = root.member("soundFileName");
  const auto name = sound ? sound->string() : std::nullopt;
  if (name && *name != kSoundFile)
    tell(report, FindingId::ConfigKey,
         "soundFileName is \"" + printable(*name) + "\", but the sound is always audio.mp3", "soundFileName");
}

}  // namespace

std::shared_ptr<const QLHalvoSDKConfig> readConfig(const std::string& path, Report& report) {
  auto json = FileManager::readAtPath(path);
  if (!json) {
    tell(report, FindingId::Unreadable, json.error().localizedDescription);
    return nullptr;
  }
  const std::size_t mistakes = report.count(Severity::Error);
  if (const auto document = JSONDocument::parse(*json)) checkKeys(document->root(), report);
  auto config = decodeSDKConfig(std::move(*json));
  if (config) return *config;
  if (report.count(Severity::Error) == mistakes) tell(report, FindingId::Config, config.error().localizedDescription);
  return nullptr;
}

}  // namespace halvo
