#include "import/sources.h"

#include <strings.h>

#include <algorithm>
#include <optional>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Takes the digits off the text's start, without leading zeros.
std::string_view takeNumber(std::string_view& text) {
  std::size_t end = 0;
  while (end < text.size() && isDigit(text[end])) ++end;
  std::string_view digits = text.substr(0, end);
  text.remove_prefix(end);
  while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
  return digits;
}

// The part of a file's name before ".svg" or ".svgz"; nothing for other files.
std::optional<std::string_view> stemOf(std::string_view name) {
  for (const std::string_view ending : {".svg", ".svgz"})
    if (name.size() > ending.size() && name.front() != '.' &&
        strncasecmp(name.data() + name.size() - ending.size(), ending.data(), ending.size()) == 0)
      return name.substr(0, name.size() - ending.size());
  return std::nullopt;
}

bool comesBefore(const std::string& a, const std::string& b) {
  const int order = compareNaturally(*stemOf(a), *stemOf(b));
  return order != 0 ? order < 0 : a < b;
}

Importing<std::vector<std::string>> listFolder(const std::string& folder) {
  std::vector<std::string> names = FileManager::contentsOfDirectoryAtPath(folder);
  std::erase_if(names, [](const std::string& name) { return !stemOf(name); });
  if (names.empty()) return refusal(folder, "there is no .svg or .svgz file in this folder");
  std::sort(names.begin(), names.end(), comesBefore);
  // Which of them is the frame, nobody but their maker knows.
  for (std::size_t i = 1; i < names.size(); ++i)
    if (compareNaturally(*stemOf(names[i - 1]), *stemOf(names[i])) == 0)
      return refusal(folder, names[i - 1] + " and " + names[i] +
                                 " are two sources of one name: remove one, or name the files in their order");
  const std::string start = folder.back() == '/' ? folder : folder + "/";
  for (std::string& name : names) name.insert(0, start);
  return names;
}

}  // namespace

int compareNaturally(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (isDigit(a.front()) && isDigit(b.front())) {
      const std::string_view first = takeNumber(a);
      const std::string_view second = takeNumber(b);
      if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
      if (const int order = first.compare(second)) return order;
      continue;
    }
    const char first = lowered(a.front());
    const char second = lowered(b.front());
    if (first != second) return static_cast<unsigned char>(first) < static_cast<unsigned char>(second) ? -1 : 1;
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

Importing<std::vector<std::string>> listSources(const std::vector<std::string>& named) {
  std::vector<std::string> files;
  for (const std::string& name : named) {
    if (!FileManager::directoryExistsAtPath(name)) {
      files.push_back(name);
      continue;
    }
    auto listed = listFolder(name);
    if (auto* const why = std::get_if<Refusal>(&listed)) return std::move(*why);
    auto& more = std::get<0>(listed);
    files.insert(files.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }
  if (files.size() > limits::kFrames)
    return refusal(named.front(), std::to_string(files.size()) + " sources, but the player takes at most " +
                                      std::to_string(limits::kFrames) + " frames");
  return files;
}

}  // namespace halvo
