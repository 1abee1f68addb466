#include "store/arguments.h"

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/text/utf8.h"
#include "types/cue_name.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::int64_t kLongestPatience = 86400;

bool isPlainText(const std::string& text) {
  if (text.empty() || !isValidUTF8(text)) return false;
  for (const char c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == 0x7f) return false;
  return true;
}

// For a shell.
std::string shellWord(const std::string& text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? "'\\''" : std::string(1, c);
  return word + "'";
}

}  // namespace

std::optional<std::string> chooseCue(const std::string& name, std::string& cue) {
  cue = normalisedCueName(name);
  if (!isPlainText(cue) || cue == "." || cue == ".." || cue.find('/') != std::string::npos)
    return "this names no directory: letters and digits are needed";
  return std::nullopt;
}

std::optional<std::string> chooseVersion(const std::string& text, std::string& version) {
  if (!isPlainText(text)) return "a text is needed";
  if (text == "0") return "devices that have never downloaded a cue call theirs 0, and would not fetch it";
  version = text;
  return std::nullopt;
}

std::optional<std::string> addSdkVersion(const std::string& text, std::vector<std::string>& versions) {
  if (!isPlainText(text)) return "a text is needed";
  versions.push_back(text);
  return std::nullopt;
}

void addChangeOptions(CommandLine& commandLine, ChangeOptions& options, std::string* keyFile) {
  if (keyFile != nullptr)
    commandLine.options.push_back(
        {"sign", "KEYFILE", "sign the set with this key, as 'halvo store keygen' makes it", setText(*keyFile)});
  commandLine.options.push_back(
      {"dry-run", "", "say what would be done, and whether it can be, and change nothing", setFlag(options.dryRun)});
  commandLine.options.push_back({"wait", "SECONDS", "how long to wait for another who is changing the store (60)",
                                 setNumber(options.patienceSeconds, 0, kLongestPatience)});
}

std::optional<NSError> readKey(const std::string& keyFile, ChangeOptions& options) {
  if (keyFile.empty()) return std::nullopt;
  Result<SigningKey> key = SigningKey::read(keyFile);
  if (!key) return key.error();
  options.key = std::move(*key);
  return std::nullopt;
}

void tellHowToUpload(const std::string& store) {
  std::error_code ignored;
  std::string directory = std::filesystem::absolute(store, ignored).string();
  if (!directory.ends_with('/')) directory += '/';
  std::fflush(stdout);
  std::fprintf(stderr,
               "To upload the store, in this order:\n"
               "  rsync -rlt --exclude=/%s --exclude='.*' %s SERVER:DIRECTORY/ &&\n"
               "  rsync -t %s SERVER:DIRECTORY/\n",
               kVersionConfigFile, shellWord(directory).c_str(), shellWord(directory + kVersionConfigFile).c_str());
}

}  // namespace halvo
