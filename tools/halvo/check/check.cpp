#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "check/cue.h"
#include "check/output.h"
#include "commands.h"
#include "options.h"
#include "progress_line.h"
#include "sound/loudness.h"

namespace halvo {

namespace {

// Whether it is clean; nothing where that could not be told.
std::optional<bool> checkOne(const std::string& source, bool json) {
  Report report;
  CueFacts facts;
  {
    ProgressLine line("check");
    facts = checkSource(source, report, [&](std::size_t done, std::size_t total) { line.show(done, total); });
  }
  const std::string text = json ? reportJson(source, report, facts) : reportText(source, report, facts, wantsColor());
  if (facts.sound && !canMeasureLoudness())
    tell("loudness and true peaks are not told: this tool was built without what measures them");
  std::fwrite(text.data(), 1, text.size(), stdout);
  if (std::fflush(stdout) != 0) return std::nullopt;
  return report.isClean();
}

}  // namespace

int check(int argc, char** argv) {
  bool json = false;
  CommandLine commandLine;
  commandLine.usage = "check SOURCE... [--json]";
  commandLine.summary =
      "Reads a cue as the player does and tells everything that the player would trip over or silently ignore: where,\n"
      "what the player does with it, and what to do instead. SOURCE is a cue directory, a folder of SVG files, or an\n"
      "animation.json or an SVG document, as a file, a pipe or '-', standard input. An error means that the cue will "
      "not play as meant, a\n"
      "warning that something is dropped or looks other than in a standard renderer; notes are good to know.\n"
      "docs/authoring.md shows every finding with an example. Exit status: 0 clean (notes at most), 1 errors or\n"
      "warnings, 2 unusable arguments.";
  commandLine.minimumPositional = 1;
  commandLine.maximumPositional = SIZE_MAX;
  commandLine.options = {
      {"json", "", "print one JSON object on one line for each SOURCE instead, for machines", setFlag(json)}};
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;

  bool isClean = true;
  for (const std::string& source : parsed.positional) {
    const auto status = checkOne(source, json);
    if (!status) return failure("standard output cannot be written");
    isClean = isClean && *status;
  }
  return isClean ? kExitFine : kExitFailure;
}

}  // namespace halvo
