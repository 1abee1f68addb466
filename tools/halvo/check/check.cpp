#include <cstdio>

#include "check/cue.h"
#include "check/output.h"
#include "commands.h"
#include "options.h"
#include "progress_line.h"
#include "sound/loudness.h"

namespace halvo {

int check(int argc, char** argv) {
  bool json = false;
  CommandLine commandLine;
  commandLine.usage = "check SOURCE [--json]";
  commandLine.summary =
      "Reads a cue as the player does and tells everything that the player would trip over or silently ignore: where,\n"
      "what the player does with it, and what to do instead. SOURCE is a cue directory, or an animation.json or an\n"
      "SVG document, as a file, a pipe or '-', standard input. An error means that the cue will not play as meant, a\n"
      "warning that something is dropped or looks other than in a standard renderer; notes are good to know.\n"
      "docs/authoring.md shows every finding with an example. Exit status: 0 clean (notes at most), 1 errors or\n"
      "warnings, 2 unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {{"json", "", "print one JSON object instead, for machines", setFlag(json)}};
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;

  const std::string& source = parsed.positional[0];
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
  if (std::fflush(stdout) != 0) return failure("standard output cannot be written");
  return report.isClean() ? kExitFine : kExitFailure;
}

}  // namespace halvo
