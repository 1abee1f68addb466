#pragma once

#include <set>
#include <string>
#include <vector>

#include "drawing_commands/read_png.h"
#include "drawing_commands/run_tool.h"
#include "platform/foundation/json/json_reader.h"
#include "quartzcore/pictures.h"
#include "support/temporary_directory.h"

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

// What the checker calls clean, the engine and a standard renderer draw alike. Edges are softened differently; a shape
// that is missing or misplaced makes more.
inline void expectDrawnAsByOthers(const std::string& document) {
  const TemporaryDirectory directory;
  const std::string ours = directory / "ours.png";
  const std::string theirs = directory / "theirs.png";
  ASSERT_EQ(halvo("frame --size 120x120 --background white -o " + ours + " " + document).status, 0);
  const Ran standard = run("rsvg-convert -w 120 -h 120 -b white -o " + theirs + " " + document);
  ASSERT_EQ(standard.status, 0) << readFile(document) << standard.output;
  SCOPED_TRACE(readFile(document));
  expectSamePicture("standard", readPng(theirs), readPng(ours), {0.2, 255});
}

inline std::string joined(const std::set<std::string>& ids) {
  std::string text;
  for (const std::string& id : ids) text += (text.empty() ? "" : " ") + id;
  return text;
}

}  // namespace quellaro
