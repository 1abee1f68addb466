#include "platform/foundation/network/url.h"

#include <arpa/inet.h>

#include <algorithm>

namespace quellaro {

namespace {

// The character classes of RFC 3986, section 2, without regard to C's locale.
constexpr bool isAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
constexpr bool isUnreservedOrSubDelim(char c) {
  return isAlpha(c) || isDigit(c) || std::string_view("-._~!$&'()*+,;=").find(c) != std::string_view::npos;
}

// Made of unreserved characters, sub-delimiters, percent-encoded octets and the characters in `others`.
bool isMadeOf(std::string_view text, std::string_view others) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      if (text.size() - i < 3 || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) return false;
      i += 2;
    } else if (!isUnreservedOrSubDelim(text[i]) && others.find(text[i]) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

bool isScheme(std::string_view text) {
  return !text.empty() && isAlpha(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
    return isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  });
}

// What stands between the brackets of an IP literal.
bool isIPLiteral(std::string_view text) {
  if (!text.empty() && (text.front() == 'v' || text.front() == 'V')) {
    const std::size_t point = text.find('.');
    return point != std::string_view::npos && point > 1 && point + 1 < text.size() &&
           std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(point), isHexDigit) &&
           text.find('%') == std::string_view::npos && isMadeOf(text.substr(point + 1), ":");
  }
  if (text.find('\0') != std::string_view::npos) return false;
  in6_addr address{};
  return inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1;
}

// Cuts off and gives what stands before the first of `ends`.
std::string_view takeUntil(std::string_view& text, std::string_view ends) {
  const std::string_view taken = text.substr(0, text.find_first_of(ends));
  text.remove_prefix(taken.size());
  return taken;
}

}  // namespace

std::optional<NSURL> NSURL::fromString(std::string_view text) {
  NSURL url;
  if (text.empty() || !url.parse(text)) return std::nullopt;
  url.text_ = text;
  return url;
}

bool NSURL::parse(std::string_view text) {
  std::string_view rest = text;
  if (const std::string_view start = takeUntil(rest, ":/?#"); !rest.empty() && rest.front() == ':') {
    // A reference without a scheme may not have a colon in its first segment, so that this is one or nothing.
    if (!isScheme(start)) return false;
    for (const char c : start) scheme_ += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    rest.remove_prefix(1);
  } else {
    rest = text;
  }
  if (rest.substr(0, 2) == "//") {
    rest.remove_prefix(2);
    if (!parseAuthority(takeUntil(rest, "/?#"))) return false;
  }
  const std::string_view path = takeUntil(rest, "?#");
  const std::string_view query = takeUntil(rest, "#");
  const std::string_view fragment = rest.substr(rest.empty() ? 0 : 1);
  return isMadeOf(path, ":@/") && isMadeOf(query, ":@/?") && isMadeOf(fragment, ":@/?");
}

bool NSURL::parseAuthority(std::string_view authority) {
  std::string_view rest = authority;
  if (const std::size_t at = rest.find('@'); at != std::string_view::npos) {
    if (!isMadeOf(rest.substr(0, at), ":")) return false;
    rest.remove_prefix(at + 1);
  }
  if (!rest.empty() && rest.front() == '[') {
    const std::size_t end = rest.find(']');
    if (end == std::string_view::npos || !isIPLiteral(rest.substr(1, end - 1))) return false;
    host_ = rest.substr(0, end + 1);
    rest.remove_prefix(end + 1);
  } else {
    const std::string_view name = takeUntil(rest, ":");
    if (!isMadeOf(name, "")) return false;
    host_ = name;
  }
  if (rest.empty()) return true;
  return rest.front() == ':' && std::all_of(rest.begin() + 1, rest.end(), isDigit);
}

}  // namespace quellaro
