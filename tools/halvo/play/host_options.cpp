#include "play/host_options.h"

#include "platform/foundation/application.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

std::optional<std::string> chooseBundle(const std::string& path) {
  if (!FileManager::directoryExistsAtPath(path)) return "there is no such directory";
  NSBundle::setLibraryPath(path);
  return std::nullopt;
}

std::optional<std::string> chooseLibrary(const std::string& path) {
  if (path.empty()) return "a directory is needed";
  setLibraryDirectory(path);
  return std::nullopt;
}

std::optional<std::string> chooseIdentifier(const std::string& identifier) {
  const auto problem = setApplicationIdentifier(identifier);
  return problem ? std::optional(problem->localizedDescription) : std::nullopt;
}

}  // namespace

void addHostOptions(CommandLine& commandLine) {
  setApplicationIdentifier("dev.quellaro.halvo");
  const Option options[] = {
      {"bundle", "DIR", "the library's bundle: Info.json and the built-in assets (the installed set)", chooseBundle},
      {"library", "DIR", "the application's Library directory ($XDG_DATA_HOME/APP_ID)", chooseLibrary},
      {"app-id", "ID", "bundle identifier of the host application, '' for none (dev.quellaro.halvo)", chooseIdentifier},
  };
  commandLine.options.insert(commandLine.options.end(), std::begin(options), std::end(options));
}

std::optional<std::string> chooseEnvironment(const std::string& name, QLHalvoEnvironment& environment) {
  if (name != "primary" && name != "secondary") return "primary or secondary is needed";
  environment = name == "primary" ? QLHalvoEnvironment::primary : QLHalvoEnvironment::secondary;
  return std::nullopt;
}

}  // namespace halvo
