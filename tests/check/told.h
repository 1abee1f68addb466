#pragma once

#include <set>
#include <string>

#include "drawing_commands/run_tool.h"
#include "platform/foundation/json/json_reader.h"

namespace quellaro {

struct Checked {
  int status = -1;
  std::string output;
  std::set<std::string> ids;
};

// What a command that reports as JSON tells; `before`: what the shell does first.
inline Checked told(const std::string& command, const std::string& before = "") {
  const Ran ran = run(before + "{ " QUELLARO_HALVO_TOOL " " + command + " 2>/dev/null; }");
  Checked checked{ran.status, ran.output, {}};
  const auto document = JSONDocument::parse(ran.output);
  if (!document) return checked;
  for (const JSONValue& finding : document->root().member("findings")->elements())
    checked.ids.emplace(*finding.member("id")->string());
  return checked;
}

}  // namespace quellaro
