#include "preview/frame_report.h"

#include "check/document_check.h"
#include "check/report.h"

namespace halvo {

namespace {

using namespace quellaro;

std::string titleOf(const FindingGroup& group) {
  const Finding& first = group.first;
  std::string title = std::string(nameOf(kindOf(first.id).severity)) + ": " + first.what;
  const std::string id = first.elementId.empty() ? "" : " id=\"" + first.elementId + "\"";
  const std::string tag = "<" + first.element + id + ">";
  if (!first.element.empty() && first.what != "<" + first.element + ">") title += " on " + tag;
  if (group.count > 1) title += ", " + std::to_string(group.count) + " times";
  return title;
}

std::string noteText(const ArtNote& note) {
  const char* const loss = note.loss == ArtLoss::LeftOut ? "left out: " : "approximated: ";
  return loss + note.what + (note.howFar.empty() ? "" : ", " + note.howFar) + " (" + printable(note.element) + ")";
}

}  // namespace

std::vector<std::string> frameReport(const PreviewSource& source, std::size_t frame) {
  std::vector<std::string> lines;
  if (frame < source.drawings.size())
    for (const ArtNote& note : source.drawings[frame]->frame.notes) lines.push_back(noteText(note));
  Report report;
  FrameFindings findings(report, "", frame + 1, (*source.texts)[frame]);
  checkDocument((*source.texts)[frame], source.texts, findings);
  for (const FindingGroup* group : report.groups()) {
    lines.push_back(titleOf(*group));
    lines.push_back("   instead: " + std::string(kindOf(group->first.id).instead));
  }
  const std::string name = "Frame " + std::to_string(frame + 1);
  lines.insert(lines.begin(), lines.empty() ? name + ": the player shows all of it" : name + ":");
  return lines;
}

}  // namespace halvo
