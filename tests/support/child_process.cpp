#include "support/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

namespace quellaro {

ChildProcess::ChildProcess(std::vector<std::string> arguments, const std::string& outputFile) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, (outputFile + ".log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int error = posix_spawnp(&process_, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + arguments[0] + ": " + std::strerror(error));
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  std::swap(process_, other.process_);
  return *this;
}

ChildProcess::~ChildProcess() { end(SIGKILL); }

void ChildProcess::signal(int number) const {
  if (process_ > 0) kill(process_, number);
}

void ChildProcess::end(int number) {
  if (process_ <= 0) return;
  kill(process_, number);
  waitpid(process_, nullptr, 0);
  process_ = -1;
}

int ChildProcess::exitStatus() {
  int status = -1;
  try {
    waitUntil(
        "it goes on", [&] { return waitpid(process_, &status, WNOHANG) != 0; }, 30);
  } catch (const std::runtime_error&) {
    return -1;
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void waitUntil(const std::string& what, const std::function<bool()>& condition, double seconds) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > limit) throw std::runtime_error(what);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

}  // namespace quellaro
