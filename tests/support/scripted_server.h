#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quellaro {

// A port of the loopback on which nobody listens.
int freePort();

// An HTTP server on the loopback that answers exactly what its script says, right or wrong. Each connection has a
// thread of its own and carries one request.
class ScriptedServer {
 public:
  struct Request {
    std::string method;
    std::string path;
    // Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
  };

  class Connection {
   public:
    Connection(int descriptor, const std::atomic<bool>& stopping) : descriptor_(descriptor), stopping_(&stopping) {}
    // False when nobody takes it any more.
    bool send(std::string_view bytes) const;
    // A whole answer with its length.
    bool answer(std::string_view body, std::string_view extraHeaders = {}) const;
    // Says nothing until the other side leaves or the server stops.
    void hang() const;
    void pause(double seconds) const;

   private:
    int descriptor_;
    const std::atomic<bool>* stopping_;
  };

  // The connection closes when the script returns.
  using Script = std::function<void(const Request&, const Connection&)>;

  explicit ScriptedServer(Script script);
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // "http://127.0.0.1:PORT"
  std::string address() const;
  // In the order of their arrival.
  std::vector<Request> requests() const;

 private:
  void serve(int descriptor);

  Script script_;
  int port_ = 0;
  int listener_;
  std::atomic<bool> stopping_ = false;
  mutable std::mutex mutex_;
  std::vector<Request> requests_;
  std::list<std::thread> threads_;
  std::thread accepter_;
};

}  // namespace quellaro
