// Any bytes as what a server sends before it hangs up: the request ends once, with data or with an error. A connection
// for each input: some thousands a second.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "platform/foundation/network/url_session.h"

namespace {

using namespace quellaro;

// One connection after the other is sent the current bytes, whatever it asks.
class Server {
 public:
  Server() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0)
      std::abort();
    port_ = ntohs(address.sin_port);
    std::thread([this] { serve(); }).detach();
  }

  int port() const { return port_; }
  void setAnswer(std::string answer) {
    const std::lock_guard lock(mutex_);
    answer_ = std::move(answer);
  }

 private:
  std::string answer() const {
    const std::lock_guard lock(mutex_);
    return answer_;
  }
  void serve() const {
    for (int connection = 0; (connection = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;
         close(connection)) {
      char request[4096];
      if (recv(connection, request, sizeof request, 0) <= 0) continue;
      const std::string bytes = answer();
      send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      shutdown(connection, SHUT_WR);
      while (recv(connection, request, sizeof request, 0) > 0) continue;
    }
  }

  int listener_;
  int port_ = 0;
  mutable std::mutex mutex_;
  std::string answer_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  setenv("no_proxy", "127.0.0.1", 1);
  static Server server;
  const std::string answer(reinterpret_cast<const char*>(data), size);
  // Redirects would lead to other machines.
  std::string lower = answer;
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (lower.find("location") != std::string::npos) return 0;
  server.setAnswer(answer);

  const auto url = NSURL::fromString("http://127.0.0.1:" + std::to_string(server.port()) + "/");
  MainQueue& queue = MainQueue::shared();
  const NSURLSession session(NSURLSessionConfiguration::ephemeralSessionConfiguration(), nullptr, queue);
  int completions = 0;
  session
      .dataTask(URLRequest(*url, URLRequest::CachePolicy::ReloadIgnoringLocalCacheData, 5),
                [&](const std::optional<std::string>& body, const std::optional<NSHTTPURLResponse>& response,
                    const std::optional<NSError>& error) {
                  ++completions;
                  if ((body || !error) && (error || !response)) std::abort();
                })
      .resume();
  if (!queue.runUntilIdle(20000) || completions != 1) std::abort();
  return 0;
}
