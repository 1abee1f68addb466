#include "platform/avfoundation/pulse_configuration.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <vector>

#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

constexpr const char* kMachineFile = "/etc/pulse/client.conf";

std::string_view trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\r");
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(" \t\r") - start + 1);
}

std::string configurationFile() {
  if (std::string chosen = environmentVariable("PULSE_CLIENTCONFIG"); !chosen.empty()) return chosen;
  const std::string directory = pulseUserDirectory();
  if (!directory.empty() && FileManager::fileExistsAtPath(directory + "/client.conf"))
    return directory + "/client.conf";
  return kMachineFile;
}

// In the order in which they are read: the file, then those of the directory that belongs to it.
std::vector<std::string> configurationFiles() {
  std::vector<std::string> files{configurationFile()};
  const std::string directory = files.front() + ".d/";
  const std::vector<std::string> names = FileManager::contentsOfDirectoryAtPath(directory);
  for (const std::string& name : std::set<std::string>(names.begin(), names.end()))
    if (name.ends_with(".conf")) files.push_back(directory + name);
  return files;
}

// "key = value"; a comment's key begins with its mark.
void findSetting(std::string_view text, std::string_view key, std::string& value) {
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const std::size_t equals = line.find('=');
    if (equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key)
      value = trimmed(line.substr(equals + 1));
  }
}

}  // namespace

std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string pulseUserDirectory() {
  const std::string configHome = environmentVariable("XDG_CONFIG_HOME");
  if (!configHome.empty()) return configHome + "/pulse";
  const std::string home = environmentVariable("HOME");
  return home.empty() ? "" : home + "/.config/pulse";
}

std::optional<std::string> pulseClientSetting(std::string_view key) {
  std::string value;
  for (const std::string& file : configurationFiles())
    if (const std::optional<std::string> text = FileManager::contentsAtPath(file)) findSetting(*text, key, value);
  if (value.empty()) return std::nullopt;
  return value;
}

}  // namespace quellaro
