#include "platform/avfoundation/pulse_address.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace quellaro {

namespace {

// A server for the whole machine; the client library's last resort, too.
constexpr const char* kSystemWideServer = "unix:/var/run/pulse/native";

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool exists(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

std::filesystem::path userConfiguration() {
  const std::string configHome = environment("XDG_CONFIG_HOME");
  const std::string home = environment("HOME");
  if (!configHome.empty()) return configHome;
  return home.empty() ? "" : home + "/.config";
}

// The client configuration may name a server: "default-server = ADDRESS".
bool namesServer(const std::filesystem::path& file) {
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start != std::string::npos && std::string_view(line).substr(start).starts_with("default-server")) return true;
  }
  return false;
}

bool configurationNamesServer(const std::filesystem::path& user) {
  if (namesServer("/etc/pulse/client.conf") || (!user.empty() && namesServer(user / "pulse/client.conf"))) return true;
  const std::string chosen = environment("PULSE_CLIENTCONFIG");
  return !chosen.empty() && namesServer(chosen);
}

// Servers that ran before left the link to their directory.
bool hasRuntimeLink(const std::filesystem::path& directory) {
  std::error_code error;
  for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
    if (entry->path().filename().string().ends_with("-runtime")) return true;
  return false;
}

}  // namespace

std::optional<std::string> pulseServerAddress() {
  for (const char* name : {"PULSE_SERVER", "PULSE_RUNTIME_PATH"})
    if (!environment(name).empty()) return std::nullopt;
  const std::string runtime = environment("XDG_RUNTIME_DIR");
  if (!runtime.empty() && exists(runtime + "/pulse")) return std::nullopt;
  const std::filesystem::path user = userConfiguration();
  if (configurationNamesServer(user)) return std::nullopt;
  if (runtime.empty() && !user.empty() && hasRuntimeLink(user / "pulse")) return std::nullopt;
  return kSystemWideServer;
}

}  // namespace quellaro
