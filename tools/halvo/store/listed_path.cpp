#include "store/listed_path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/foundation/network/url.h"

namespace halvo {

namespace {

std::optional<std::string> realPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  if (error) return std::nullopt;
  return real.string();
}

int hexDigit(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  return static_cast<int>(kDigits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c));
}

// Of a valid address, in which two digits follow every "%".
std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    decoded += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
    i += 2;
  }
  return decoded;
}

}  // namespace

std::optional<std::string> listedDirectory(std::string_view filepath) {
  if (filepath.find_first_of("?#") != std::string_view::npos) return std::nullopt;
  if (!quellaro::NSURL::fromString("http://store/" + std::string(filepath) + "/file")) return std::nullopt;
  const std::string decoded = percentDecoded(filepath);
  if (decoded.find('\0') != std::string::npos) return std::nullopt;
  std::string directory;
  std::string_view rest = decoded;
  while (!rest.empty()) {
    const std::string_view name = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name.empty()) continue;
    if (name.front() == '.') return std::nullopt;
    directory.append(directory.empty() ? "" : "/").append(name);
  }
  return directory.empty() ? std::nullopt : std::optional(directory);
}

std::string filepathOf(std::string_view directory) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr std::string_view kPlainMarks = "-._~/";
  std::string filepath;
  for (const char c : directory) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                         kPlainMarks.find(c) != std::string_view::npos;
    const auto byte = static_cast<unsigned char>(c);
    if (isPlain)
      filepath += c;
    else
      filepath.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
  }
  return filepath;
}

std::optional<std::string> realPathWithin(const std::string& directory, const std::string& path) {
  const std::optional<std::string> root = realPath(directory);
  std::optional<std::string> real = realPath(path);
  if (!root || !real) return std::nullopt;
  if (*root != "/" && *real != *root && !real->starts_with(*root + "/")) return std::nullopt;
  return real;
}

}  // namespace halvo
