#include "check/output.h"

namespace halvo {

namespace {

using quellaro::JSONWriter;

void writeNumber(JSONWriter& json, const char* key, std::size_t value) {
  json.key(key).integer(static_cast<std::int64_t>(value));
}

// Null when it does not apply.
void writeText(JSONWriter& json, const char* key, const std::string& text) {
  json.key(key);
  if (text.empty())
    json.null();
  else
    json.string(text);
}

template <class Value>
void writeOptional(JSONWriter& json, const char* key, const std::optional<Value>& value) {
  json.key(key);
  if (value)
    json.number(static_cast<double>(*value));
  else
    json.null();
}

void writeMoments(JSONWriter& json, const char* key, const std::vector<double>& moments) {
  json.key(key).beginArray();
  for (const double moment : moments) json.number(moment);
  json.endArray();
}

void writeGroup(JSONWriter& json, const FindingGroup& group) {
  const Finding& first = group.first;
  const FindingKind& kind = kindOf(first.id);
  const auto position = first.position.value_or(TextPosition{});
  json.beginObject();
  json.key("id").string(kind.name).key("severity").string(nameOf(kind.severity)).key("file").string(first.file);
  writeOptional(json, "frame", first.frame);
  writeOptional(json, "line", first.position ? std::optional(position.line) : std::nullopt);
  writeOptional(json, "column", position.column > 0 ? std::optional(position.column) : std::nullopt);
  writeText(json, "element", first.element);
  writeText(json, "elementId", first.elementId);
  writeText(json, "attribute", first.attribute);
  json.key("what").string(first.what).key("player").string(kind.player).key("instead").string(kind.instead);
  writeText(json, "howFar", first.howFar);
  writeNumber(json, "count", group.count);
  json.key("frames").beginArray();
  for (const std::size_t frame : group.frames) json.integer(static_cast<std::int64_t>(frame));
  json.endArray().endObject();
}

}  // namespace

std::string reportJson(const std::string& source, const Report& report, const CueFacts& facts,
                       const std::function<void(JSONWriter&)>& more) {
  JSONWriter json;
  json.beginObject().key("source").string(source).key("clean").boolean(report.isClean());
  writeNumber(json, "errors", report.count(Severity::Error));
  writeNumber(json, "warnings", report.count(Severity::Warning));
  writeNumber(json, "notes", report.count(Severity::Note));
  writeNumber(json, "leftOut", report.leftOut());
  writeNumber(json, "frames", facts.frames);
  writeOptional(json, "animationEnd", facts.animationEnd);
  writeOptional(json, "soundEnd", facts.soundEnd);
  writeOptional(json, "hapticsEnd", facts.hapticsEnd);
  const SoundFacts sound = facts.sound.value_or(SoundFacts{});
  writeOptional(json, "soundLength", facts.sound ? std::optional(sound.seconds) : std::nullopt);
  writeOptional(json, "soundLoudness", sound.loudness);
  writeOptional(json, "soundTruePeak", sound.truePeak);
  writeOptional(json, "soundFirstHeard", sound.firstHeard);
  writeMoments(json, "pictureChanges", facts.moments.pictures);
  writeMoments(json, "soundOnsets", facts.moments.sounds);
  writeMoments(json, "taps", facts.moments.taps);
  json.key("findings").beginArray();
  for (const FindingGroup* group : report.groups()) writeGroup(json, *group);
  json.endArray();
  if (more) more(json);
  json.endObject();
  return json.take() + "\n";
}

}  // namespace halvo
