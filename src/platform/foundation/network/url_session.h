#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/dispatch/function.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/error.h"
#include "platform/foundation/network/url_request.h"

namespace quellaro {

// What a server answered, but for the body.
struct NSHTTPURLResponse {
  // The address that answered in the end, after redirects.
  std::string url;
  int statusCode = 0;
};

struct NSURLSessionConfiguration {
  // No cookies, no cache, no stored credentials: nothing of a request outlives it. It is the only kind there is.
  static NSURLSessionConfiguration ephemeralSessionConfiguration() { return {}; }
};

// Every operation of a delegate is optional, and nobody has needed one yet.
class NSURLSessionDelegate {
 public:
  virtual ~NSURLSessionDelegate() = default;
};

// Either data and a response, or an error (and the response, when one had begun). An empty body is no data.
using URLSessionCompletion =
    Function<void(std::optional<std::string> data, std::optional<NSHTTPURLResponse> response, std::optional<NSError>)>;

// One request that has not been sent before resume().
class NSURLSessionDataTask {
 public:
  NSURLSessionDataTask(URLRequest request, MainQueue& queue, URLSessionCompletion completion);
  // Starts the request, the first time. The task need not be kept: a request ends by its completion on the session's
  // queue, exactly once, or with the process.
  void resume();

 private:
  URLRequest request_;
  MainQueue* queue_;
  URLSessionCompletion completion_;
  bool resumed_ = false;
};

// http and https, on one thread of the platform's that the first request starts. Redirects are followed, gzip and
// deflate decoded; servers are verified against the system's certificates (SSL_CERT_FILE and SSL_CERT_DIR name others);
// proxies are the environment's. A response is bounded by limits::kResponseBytes. The exit of the process waits for no
// request.
class NSURLSession {
 public:
  NSURLSession(const NSURLSessionConfiguration& configuration, std::shared_ptr<NSURLSessionDelegate> delegate,
               MainQueue& delegateQueue);
  // Any thread. The completion runs on the session's queue; the session need not outlive the task.
  NSURLSessionDataTask dataTask(URLRequest request, URLSessionCompletion completion) const;

 private:
  std::shared_ptr<NSURLSessionDelegate> delegate_;
  MainQueue* delegateQueue_;
};

}  // namespace quellaro
