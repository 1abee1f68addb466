#include "support/scripted_server.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace quellaro {

namespace {

int listenOnLoopback(int& port) {
  const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (descriptor < 0 || bind(descriptor, generic, size) != 0 || listen(descriptor, 64) != 0 ||
      getsockname(descriptor, generic, &size) != 0)
    throw std::runtime_error("cannot listen on the loopback");
  port = ntohs(address.sin_port);
  return descriptor;
}

bool isReadable(int descriptor, int milliseconds) {
  pollfd poller{descriptor, POLLIN, 0};
  return poll(&poller, 1, milliseconds) == 1;
}

// Reads until the head is complete and then as much as it promises.
std::optional<ScriptedServer::Request> readRequest(int descriptor, const std::atomic<bool>& stopping) {
  std::string text;
  std::size_t headEnd = std::string::npos;
  std::size_t wanted = 0;
  ScriptedServer::Request request;
  while (headEnd == std::string::npos || text.size() < headEnd + 4 + wanted) {
    if (stopping) return std::nullopt;
    if (!isReadable(descriptor, 50)) continue;
    char bytes[4096];
    const ssize_t count = recv(descriptor, bytes, sizeof bytes, 0);
    if (count <= 0) return std::nullopt;
    text.append(bytes, static_cast<std::size_t>(count));
    if (headEnd != std::string::npos || (headEnd = text.find("\r\n\r\n")) == std::string::npos) continue;
    std::istringstream head(text.substr(0, headEnd));
    head >> request.method >> request.path;
    std::string line;
    std::getline(head, line);
    while (std::getline(head, line)) {
      const std::size_t colon = line.find(':');
      std::string name = line.substr(0, colon);
      for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      const std::size_t end = line.find_last_not_of("\r ");
      const std::size_t start = std::min(line.find_first_not_of(' ', colon + 1), end + 1);
      request.headers[name] = line.substr(start, end + 1 - start);
    }
    if (request.headers.count("content-length") != 0) wanted = std::stoul(request.headers["content-length"]);
  }
  request.body = text.substr(headEnd + 4);
  return request;
}

}  // namespace

int freePort() {
  int port = 0;
  close(listenOnLoopback(port));
  return port;
}

bool ScriptedServer::Connection::send(std::string_view bytes) const {
  while (!bytes.empty() && !*stopping_) {
    const ssize_t count = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return bytes.empty();
}

bool ScriptedServer::Connection::answer(std::string_view body, std::string_view extraHeaders) const {
  return send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + std::string(extraHeaders) +
              "\r\n" + std::string(body));
}

void ScriptedServer::Connection::hang() const {
  while (!*stopping_)
    if (isReadable(descriptor_, 20)) return;
}

void ScriptedServer::Connection::pause(double seconds) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!*stopping_ && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

ScriptedServer::ScriptedServer(Script script) : script_(std::move(script)), listener_(listenOnLoopback(port_)) {
  // Whatever proxy the machine is behind, it is not for this server.
  setenv("no_proxy", "127.0.0.1", 1);
  accepter_ = std::thread([this] {
    while (!stopping_) {
      if (!isReadable(listener_, 20)) continue;
      const int descriptor = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (descriptor >= 0) threads_.emplace_back([this, descriptor] { serve(descriptor); });
    }
  });
}

ScriptedServer::~ScriptedServer() {
  stopping_ = true;
  accepter_.join();
  close(listener_);
  for (std::thread& thread : threads_) thread.join();
}

std::string ScriptedServer::address() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::vector<ScriptedServer::Request> ScriptedServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void ScriptedServer::serve(int descriptor) {
  // A sender that nobody reads from looks up now and then whether it should stop.
  const timeval patience{1, 0};
  setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  if (const auto request = readRequest(descriptor, stopping_)) {
    {
      const std::lock_guard lock(mutex_);
      requests_.push_back(*request);
    }
    script_(*request, Connection(descriptor, stopping_));
  }
  // Closed in good order: what is still unread would turn the close into a reset.
  shutdown(descriptor, SHUT_WR);
  close(descriptor);
}

}  // namespace quellaro
