#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace quellaro {

// A program that runs beside the test and never outlives it.
class ChildProcess {
 public:
  ChildProcess() = default;
  // Found as the shell finds it. Its outputs go to that file and to the same name with ".log"; throws when it cannot be
  // started.
  ChildProcess(std::vector<std::string> arguments, const std::string& outputFile);
  ChildProcess(ChildProcess&& other) noexcept : process_(other.process_) { other.process_ = -1; }
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  void signal(int number) const;
  // Sends the signal and waits for the end.
  void end(int number);
  // Waits for the end; -1 when a signal was the end, or when there is none for half a minute.
  int exitStatus();

 private:
  pid_t process_ = -1;
};

// Throws, with that text, when it has not come about after that many seconds.
void waitUntil(const std::string& what, const std::function<bool()>& condition, double seconds = 20);

}  // namespace quellaro
