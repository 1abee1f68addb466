#include "picture/svg_folder.h"

#include <strings.h>

#include <algorithm>

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

bool comesBefore(const std::string& a, const std::string& b) {
  const int order = compareNaturally(*svgStemOf(a), *svgStemOf(b));
  return order != 0 ? order < 0 : a < b;
}

}  // namespace

std::optional<std::string_view> svgStemOf(std::string_view name) {
  for (const std::string_view ending : {".svg", ".svgz"})
    if (name.size() > ending.size() && name.front() != '.' &&
        strncasecmp(name.data() + name.size() - ending.size(), ending.data(), ending.size()) == 0)
      return name.substr(0, name.size() - ending.size());
  return std::nullopt;
}

std::vector<std::string> svgNamesIn(const std::string& folder) {
  std::vector<std::string> names = FileManager::contentsOfDirectoryAtPath(folder);
  std::erase_if(names, [](const std::string& name) { return !svgStemOf(name); });
  std::sort(names.begin(), names.end(), comesBefore);
  return names;
}

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

}  // namespace halvo
