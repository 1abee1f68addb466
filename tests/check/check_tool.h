#pragma once

#include <set>
#include <string>
#include <vector>

#include "drawing_commands/run_tool.h"
#include "platform/foundation/json_reader.h"
#include "platform/foundation/json_writer.h"

namespace quellaro {

struct Checked {
  int status = -1;
  std::string output;
  std::set<std::string> ids;
};

// What `halvo check --json` finds in a source.
inline Checked check(const std::string& source) {
  const Ran ran = halvo("check --json '" + source + "'");
  Checked checked{ran.status, ran.output, {}};
  const auto document = JSONDocument::parse(ran.output);
  if (!document) return checked;
  for (const JSONValue& finding : document->root().member("findings")->elements())
    checked.ids.emplace(*finding.member("id")->string());
  return checked;
}

// An animation.json of these frames.
inline std::string animationOf(const std::vector<std::string>& frames) {
  JSONWriter json;
  json.beginArray();
  for (const std::string& frame : frames) json.string(frame);
  json.endArray();
  return json.take();
}

inline std::string joined(const std::set<std::string>& ids) {
  std::string text;
  for (const std::string& id : ids) text += (text.empty() ? "" : " ") + id;
  return text;
}

}  // namespace quellaro
