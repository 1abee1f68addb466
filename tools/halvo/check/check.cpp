#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "check/cue.h"
#include "check/output.h"
#include "commands.h"
#include "options.h"

namespace halvo {

namespace {

using Clock = std::chrono::steady_clock;

bool wantsColor() {
  const char* const terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr && terminal != nullptr &&
         std::string_view(terminal) != "dumb";
}

// A line that is written over, on a terminal, for what takes longer than a moment.
class ProgressLine {
 public:
  ProgressLine() : isShown_(isatty(STDERR_FILENO) == 1) {}
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine() {
    if (written_) std::fputs("\r\033[K", stderr);
  }

  void show(std::size_t done, std::size_t total) {
    if (!isShown_ || Clock::now() - last_ < std::chrono::milliseconds(500)) return;
    last_ = Clock::now();
    written_ = true;
    std::fprintf(stderr, "\rhalvo check: frame %zu of %zu", done, total);
  }

 private:
  bool isShown_;
  bool written_ = false;
  Clock::time_point last_ = Clock::now();
};

}  // namespace

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
    ProgressLine line;
    facts = checkSource(source, report, [&](std::size_t done, std::size_t total) { line.show(done, total); });
  }
  const std::string text = json ? reportJson(source, report, facts) : reportText(source, report, facts, wantsColor());
  std::fwrite(text.data(), 1, text.size(), stdout);
  if (std::fflush(stdout) != 0) return failure("standard output cannot be written");
  return report.isClean() ? kExitFine : kExitFailure;
}

}  // namespace halvo
