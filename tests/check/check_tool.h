#pragma once

#include <set>
#include <string>

#include "check/told.h"
#include "drawing_commands/read_png.h"
#include "drawing_commands/run_tool.h"
#include "platform/foundation/json/json_reader.h"
#include "quartzcore/pictures.h"
#include "support/temporary_directory.h"

namespace quellaro {

// What `halvo check` finds in a source; in a document by itself, which need not show anything on every ground, but for
// that.
inline Checked check(const std::string& source) {
  Checked checked = told("check --json '" + source + "'");
  if (source.ends_with(".svg"))
    for (const char* id : {"frame-unseen", "ground-color"}) checked.ids.erase(id);
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
