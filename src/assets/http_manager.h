#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/network/url_session.h"

namespace quellaro {

// The one HTTP request operation of the library.
class QLHalvoHttpManager {
 public:
  // Sends the request as JSON, with the headers of the map after that, in a session of its own that keeps nothing and
  // gives up after 60 seconds of silence. The completion runs on the main queue; what the status code says is for it to
  // judge. What of the body is taken, and where it waits, the bounds say. Any thread.
  static void request(const NSURL& url, const std::string& method, std::optional<std::string> body,
                      const std::map<std::string, std::string>& headers, std::shared_ptr<NSURLSessionDelegate> delegate,
                      URLSessionCompletion completion, BodyBounds bounds = {});
};

}  // namespace quellaro
