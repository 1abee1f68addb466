#include "assets/http_manager.h"

#include <utility>

namespace quellaro {

namespace {
constexpr double kTimeout = 60;
}

void QLHalvoHttpManager::request(const NSURL& url, const std::string& method, std::optional<std::string> body,
                                 const std::map<std::string, std::string>& headers,
                                 std::shared_ptr<NSURLSessionDelegate> delegate, URLSessionCompletion completion,
                                 BodyBounds bounds) {
  URLRequest request(url, URLRequest::CachePolicy::UseProtocolCachePolicy, kTimeout);
  request.httpMethod = method;
  request.httpBody = std::move(body);
  request.responseBounds = std::move(bounds);
  request.addValue("application/json", "Content-Type");
  request.cachePolicy = URLRequest::CachePolicy::ReloadIgnoringLocalCacheData;
  for (const auto& [name, value] : headers) request.addValue(value, name);
  const NSURLSession session(NSURLSessionConfiguration::ephemeralSessionConfiguration(), std::move(delegate),
                             MainQueue::shared());
  session.dataTask(std::move(request), std::move(completion)).resume();
}

}  // namespace quellaro
