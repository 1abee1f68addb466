#include <cstdio>
#include <string>
#include <string_view>

#include "c_interface/quellaro_halvo.h"
#include "commands.h"
#include "options.h"
#include "platform/foundation/text/utf8.h"

namespace {

struct Command {
  const char* name;
  const char* summary;
  int (*run)(int argc, char** argv);
};

constexpr Command kCommands[] = {
    {"play", "prepare a cue and play it", halvo::play},
    {"preview", "show a cue over and over, and again whenever it is saved", halvo::preview},
    {"import", "make a cue of SVG files and a sound", halvo::import},
    {"layers", "show the layer tree of SVG documents", halvo::layers},
    {"publish", "put a cue into a store that devices upgrade from", halvo::publish},
    {"store", "look after a store: list, verify, diff, roll back, prune; make keys", halvo::store},
    {"usage", "print the usage records that are stored, without sending them", halvo::usage},
    {"frame", "draw one frame into a PNG file", halvo::frame},
    {"bench", "measure what it costs to show a cue's frames", halvo::bench},
    {"sheet", "draw a cue as a contact sheet", halvo::sheet},
    {"export", "make a film of a cue, or an animated picture", halvo::exportFilm},
    {"check", "tell what a cue holds that the player would trip over or ignore", halvo::check},
    {"help", "print this, or what one command takes", nullptr},
};

void printHelp(std::FILE* file) {
  std::fputs("Usage: halvo COMMAND [arguments]\n\nCommands:\n", file);
  for (const Command& command : kCommands) std::fprintf(file, "  %-8s %s\n", command.name, command.summary);
  std::fputs("\n'halvo COMMAND --help' tells more; 'halvo --version' prints the version.\n", file);
}

int run(const std::string& name, int argc, char** argv) {
  for (const Command& command : kCommands)
    if (command.name == name && command.run != nullptr) return command.run(argc, argv);
  std::fprintf(stderr, "halvo: unknown command %s\nTry 'halvo --help'.\n", quellaro::printable(name).c_str());
  return halvo::kExitUsage;
}

int help(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) != "help") {
    std::string option = "--help";
    char* arguments[] = {argv[1], option.data(), nullptr};
    return run(argv[1], 2, arguments);
  }
  printHelp(stdout);
  return halvo::kExitFine;
}

int version() {
  std::printf("halvo %s\n", quellaro_halvo_version());
  return halvo::kExitFine;
}

int dispatch(int argc, char** argv) {
  if (argc < 2) {
    printHelp(stderr);
    return halvo::kExitUsage;
  }
  const std::string name = argv[1];
  if (name == "--help" || name == "-h" || name == "help") return help(argc - 1, argv + 1);
  if (name == "--version") return version();
  return run(name, argc - 1, argv + 1);
}

}  // namespace

int main(int argc, char** argv) {
  const int status = dispatch(argc, argv);
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  const int unwritten = halvo::failure("standard output cannot be written");
  return status == halvo::kExitFine ? unwritten : status;
}
