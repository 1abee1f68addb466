#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/network/received_body.h"
#include "platform/foundation/network/url.h"

namespace quellaro {

// Whether the text can be a method or a field's name (RFC 9110, section 5.6.2).
bool isHTTPToken(std::string_view text);

// What is asked of a server.
class URLRequest {
 public:
  // There is no cache, so that both come to the same.
  enum class CachePolicy { UseProtocolCachePolicy, ReloadIgnoringLocalCacheData };
  using HeaderField = std::pair<std::string, std::string>;

  // `timeoutInterval` is in seconds: how long the line may be silent, connecting included. A transfer that is slow but
  // alive takes as long as it takes.
  URLRequest(NSURL address, CachePolicy policy, double timeout)
      : url(std::move(address)), cachePolicy(policy), timeoutInterval(timeout) {}

  // A further value for a field that is there already is appended to it after a comma. A name or value that cannot
  // stand in a request (a line break, a control character, a name that is no token) is left out.
  void addValue(std::string_view value, std::string_view headerField);
  const std::vector<HeaderField>& headerFields() const { return headerFields_; }

  NSURL url;
  CachePolicy cachePolicy;
  double timeoutInterval;
  std::string httpMethod = "GET";
  std::optional<std::string> httpBody;
  BodyBounds responseBounds;

 private:
  std::vector<HeaderField> headerFields_;
};

}  // namespace quellaro
