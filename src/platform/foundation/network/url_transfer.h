#pragma once

#include <curl/curl.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/network/content_decoder.h"
#include "platform/foundation/network/url_session.h"

namespace quellaro {

// One request on its way, from its first byte to its completion. Made on the thread that asks; everything else happens
// on the loader's.
class URLTransfer {
 public:
  URLTransfer(URLRequest request, MainQueue& queue, URLSessionCompletion completion);
  URLTransfer(const URLTransfer&) = delete;
  URLTransfer& operator=(const URLTransfer&) = delete;

  // Makes the handle. False when the request cannot be sent at all; why is kept for fail().
  bool prepare();
  CURL* handle() const { return handle_.get(); }

  // Looks whether anything has passed on the line since the last look; `now` in seconds of the monotonic clock.
  void noteActivity(double now);
  // Whether far more has passed on the line than any response takes.
  bool isEndless() const { return lastLineState_.bytes > limits::kConnectionBytes; }
  // When the line will have been silent for too long.
  double deadline() const { return lastActivity_ + timeout_; }

  // Each queues the completion. The first is for a transfer that came to its end. One that throws bad_alloc has to be
  // called again.
  void finish(CURLcode result);
  void fail(URLErrorCode code, std::string_view detail = {});

 private:
  // Counters that only ever change when something passes on the line or a connection comes or goes.
  struct LineState {
    std::uint64_t socketsSeen = 0;
    std::uint64_t socketsOpen = 0;
    std::uint64_t bytes = 0;
    friend bool operator==(const LineState&, const LineState&) = default;
  };
  // How much has come of the last response's head.
  enum class Head { None, Begun, Complete };
  struct EasyCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  struct ListCleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  void setMethod();
  void setHeaderFields();
  void setSecurity();
  void setCallbacks();
  void addHeaderLine(const std::string& line);
  LineState lineState() const;
  // What curl calls; nothing may be thrown through it.
  curl_socket_t openSocket(const curl_sockaddr& address);
  // Each gives how much of it is welcome: all or nothing.
  std::size_t receiveHeaderLine(std::string_view line);
  std::size_t receive(std::string_view bytes);
  std::optional<NSHTTPURLResponse> response() const;
  void complete();

  // What the completion is told, made in advance.
  struct Outcome {
    URLSessionCompletion completion;
    std::optional<std::string> data;
    std::optional<NSHTTPURLResponse> response;
    std::optional<NSError> error;
  };

  URLRequest request_;
  MainQueue* queue_;
  std::shared_ptr<Outcome> outcome_;
  PendingActivity activity_;
  std::string certificateFile_;
  std::string certificateDirectory_;
  double timeout_;
  double lastActivity_;
  LineState lastLineState_;
  std::vector<curl_socket_t> sockets_;
  std::uint64_t socketsSeen_ = 0;
  Head head_ = Head::None;
  std::size_t trailerBytes_ = 0;
  ReceivedBody body_;
  std::optional<ContentDecoder> decoder_;
  // Why the transfer was broken off from this side.
  std::optional<URLErrorCode> failure_;
  std::array<char, CURL_ERROR_SIZE> detail_{};
  std::unique_ptr<curl_slist, ListCleanup> headerLines_;
  // Last, so that it goes first: closing its connections still counts them.
  std::unique_ptr<CURL, EasyCleanup> handle_;
};

}  // namespace quellaro
