#include <cstdio>
#include <string>
#include <string_view>

#include "commands.h"
#include "options.h"
#include "store/store_commands.h"

namespace halvo {

namespace {

struct StoreCommand {
  const char* name;
  const char* summary;
  int (*run)(int argc, char** argv);
};

constexpr StoreCommand kStoreCommands[] = {
    {"list", "what a store lists, what it holds, and what of that is unused", storeList},
    {"verify", "whether devices get what a store, or the server of one, lists", storeVerify},
    {"diff", "what differs between two stores", storeDiff},
    {"rollback", "list a version again that is in a store", storeRollback},
    {"prune", "remove versions that have not been listed for a week", storePrune},
    {"keygen", "make a key to sign cues with", storeKeygen},
};

void printHelp(std::FILE* file) {
  std::fputs("Usage: halvo store COMMAND [arguments]\n\nKeeps a store that 'halvo publish' fills.\n\nCommands:\n",
             file);
  for (const StoreCommand& command : kStoreCommands) std::fprintf(file, "  %-8s %s\n", command.name, command.summary);
  std::fputs(
      "\nOptions:\n  -h, --help  print this and stop\n\n'halvo store COMMAND --help' tells more. Exit status: 0 done, "
      "1 "
      "failed, 2 unusable arguments.\n",
      file);
}

}  // namespace

int store(int argc, char** argv) {
  const std::string_view name = argc > 1 ? argv[1] : "";
  if (name == "--help" || name == "-h" || name == "help") {
    printHelp(stdout);
    return kExitFine;
  }
  for (const StoreCommand& command : kStoreCommands) {
    if (command.name != name) continue;
    std::string whole = "store " + std::string(name);
    argv[1] = whole.data();
    return command.run(argc - 1, argv + 1);
  }
  if (name.empty()) {
    printHelp(stderr);
    return kExitUsage;
  }
  return usageError("store", "unknown command " + std::string(name));
}

}  // namespace halvo
