#include "platform/avfoundation/pulse_address.h"

#include <algorithm>
#include <vector>

#include "platform/avfoundation/pulse_configuration.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

// A server for the whole machine; the client library's last resort, too.
constexpr const char* kSystemWideServer = "unix:/var/run/pulse/native";

// Servers that ran before left the link to their directory.
bool hasRuntimeLink(const std::string& directory) {
  const std::vector<std::string> names = FileManager::contentsOfDirectoryAtPath(directory);
  return std::any_of(names.begin(), names.end(), [](const std::string& name) { return name.ends_with("-runtime"); });
}

}  // namespace

std::optional<std::string> pulseServerAddress() {
  for (const char* name : {"PULSE_SERVER", "PULSE_RUNTIME_PATH"})
    if (!environmentVariable(name).empty()) return std::nullopt;
  const std::string runtime = environmentVariable("XDG_RUNTIME_DIR");
  if (!runtime.empty() && FileManager::fileExistsAtPath(runtime + "/pulse")) return std::nullopt;
  if (pulseClientSetting("default-server")) return std::nullopt;
  const std::string user = pulseUserDirectory();
  if (runtime.empty() && !user.empty() && hasRuntimeLink(user)) return std::nullopt;
  return kSystemWideServer;
}

}  // namespace quellaro
