#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/foundation/network/url_error.h"
#include "platform/foundation/network/url_session.h"
#include "support/main_queue_driver.h"

namespace quellaro {

struct Answer {
  int completions = 0;
  std::optional<std::string> data;
  std::optional<NSHTTPURLResponse> response;
  std::optional<NSError> error;

  std::optional<URLErrorCode> code() const {
    return error ? std::optional(static_cast<URLErrorCode>(error->code)) : std::nullopt;
  }
  std::string text() const { return data.value_or("(no data)"); }
};

inline URLRequest requestFor(const std::string& address, double timeout = 10) {
  return {NSURL::fromString(address).value(), URLRequest::CachePolicy::ReloadIgnoringLocalCacheData, timeout};
}

inline void start(URLRequest request, URLSessionCompletion completion) {
  const NSURLSession session(NSURLSessionConfiguration::ephemeralSessionConfiguration(), nullptr, MainQueue::shared());
  session.dataTask(std::move(request), std::move(completion)).resume();
}

// Sends the request and waits for its completion.
inline Answer fetch(URLRequest request) {
  MainQueueDriver driver;
  Answer answer;
  start(std::move(request), [&](auto data, auto response, auto error) {
    ++answer.completions;
    answer.data = std::move(data);
    answer.response = std::move(response);
    answer.error = std::move(error);
  });
  EXPECT_EQ(answer.completions, 0) << "a completion never runs inside the call";
  driver.settle();
  EXPECT_EQ(answer.completions, 1);
  EXPECT_EQ(answer.error ? answer.error->domain : kURLErrorDomain, kURLErrorDomain);
  EXPECT_FALSE(answer.error && answer.data);
  return answer;
}

inline Answer fetch(const std::string& address, double timeout = 10) { return fetch(requestFor(address, timeout)); }

}  // namespace quellaro
