#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quellaro {

// An address that is valid as it was written (RFC 3986: a URI, or a reference without a scheme). Nothing is repaired: a
// blank, a raw character beyond ASCII or a stray "%" makes a text no address.
class NSURL {
 public:
  // Nothing when the text is empty or no valid address.
  static std::optional<NSURL> fromString(std::string_view text);

  const std::string& absoluteString() const { return text_; }
  // Lower case; empty when there is none.
  const std::string& scheme() const { return scheme_; }
  // As written, an IP literal with its brackets; empty when there is none.
  const std::string& host() const { return host_; }

  friend bool operator==(const NSURL& a, const NSURL& b) { return a.text_ == b.text_; }

 private:
  NSURL() = default;
  bool parse(std::string_view text);
  bool parseAuthority(std::string_view authority);

  std::string text_;
  std::string scheme_;
  std::string host_;
};

}  // namespace quellaro
